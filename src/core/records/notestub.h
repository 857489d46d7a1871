#pragma once

#include "records/field.h"

#include <QObject>
#include <QString>

namespace orvel {

// The note that kept lesson phrases landed in.
struct NoteStub {
    Q_GADGET
    Q_PROPERTY(int id MEMBER id)
    Q_PROPERTY(QString title MEMBER title)
public:
    int id = 0;
    QString title{};

    bool operator==(const NoteStub &) const = default;

    static constexpr auto fields =
        std::make_tuple(json::field("id", &NoteStub::id), json::field("title", &NoteStub::title));
};

} // namespace orvel
