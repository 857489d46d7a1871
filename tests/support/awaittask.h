#pragma once

#include <exception>
#include <optional>
#include <QCoreApplication>
#include <qcoro/qcorotask.h>

// Runs a coroutine to its end in a nested event loop and hands back its result, rethrowing what
// it threw (QCoro::waitFor alone would wait forever on a task that throws).
namespace testsupport {

namespace detail {
template <class T>
QCoro::Task<void> capture(QCoro::Task<T> task, std::optional<T> *result, std::exception_ptr *error,
                          bool *done)
{
    try {
        result->emplace(co_await std::move(task));
    } catch (...) {
        *error = std::current_exception();
    }
    *done = true;
}

inline QCoro::Task<void> captureVoid(QCoro::Task<void> task, std::exception_ptr *error, bool *done)
{
    try {
        co_await std::move(task);
    } catch (...) {
        *error = std::current_exception();
    }
    *done = true;
}
} // namespace detail

template <class T> T await(QCoro::Task<T> task)
{
    std::optional<T> result;
    std::exception_ptr error;
    bool done = false;
    QCoro::waitFor(detail::capture(std::move(task), &result, &error, &done));
    if (error)
        std::rethrow_exception(error);
    return std::move(*result);
}

inline void await(QCoro::Task<void> task)
{
    std::exception_ptr error;
    bool done = false;
    QCoro::waitFor(detail::captureVoid(std::move(task), &error, &done));
    if (error)
        std::rethrow_exception(error);
}

} // namespace testsupport
