#include "notes/imagepicker.h"

#include "app/services.h"
#include "app/timings.h"
#include "library/learnerinput.h"
#include "notes/notetexts.h"
#include "records/credit.h"
#include "server/apiclient.h"

#include <QVariantMap>

namespace orvel {

ImagePicker::ImagePicker(QString query, int deck, QString kind, QObject *parent)
    : QObject(parent), m_api(Services::current().api()), m_deck(deck), m_kind(std::move(kind)),
      m_query(std::move(query))
{
    m_pause.setSingleShot(true);
    connect(&m_pause, &QTimer::timeout, this, [this] { search(trimSpacesAndTabs(m_query)); });
    look();
}

void ImagePicker::setQuery(const QString &query)
{
    if (m_query == query)
        return;
    m_query = query;
    emit queryChanged();
    look();
}

void ImagePicker::look()
{
    // A new query cancels the one waiting, and makes the answer to one on its way count for
    // nothing.
    m_pause.stop();
    m_calls.abandonLatest();
    if (trimSpacesAndTabs(m_query).isEmpty()) {
        m_results.clear();
        m_searched.clear();
        m_at = 0;
        emit resultsChanged();
        emit atChanged();
        return;
    }
    m_pause.start(Timings::shared().pictureSearch);
}

QCoro::Task<> ImagePicker::search(QString query)
{
    const auto reply =
        co_await m_calls.run(m_api.searchImages(query, m_deck, m_kind), CallOptions().latest());
    if (!reply)
        co_return;
    m_results = reply->results;
    m_searched = query;
    m_sources = reply->sources;
    m_at = 0;
    emit resultsChanged();
    emit atChanged();
}

QVariantList ImagePicker::results() const
{
    QVariantList list;
    for (const FoundImage &image : m_results)
        list.append(
            QVariantMap{{QStringLiteral("thumb"), image.thumb.isEmpty() ? image.url : image.thumb},
                        {QStringLiteral("title"), image.title},
                        // The learner's own pictures need no credit line.
                        {QStringLiteral("credit"),
                         learnersOwnPicture(image.origin) ? notetexts::yours() : image.credit()},
                        {QStringLiteral("width"), image.width},
                        {QStringLiteral("height"), image.height}});
    return list;
}

QString ImagePicker::notice() const
{
    if (trimSpacesAndTabs(m_query).isEmpty())
        return notetexts::typeWhatPicture();
    if (moving() && m_sources && !m_sources->tenor && !m_sources->giphy)
        return notetexts::diagramsOnly();
    if (!m_searched.isEmpty() && m_results.isEmpty())
        return notetexts::nothingFound(m_searched);
    return {};
}

QString ImagePicker::footer() const
{
    return notetexts::pickerFooter();
}

void ImagePicker::move(int step)
{
    if (m_results.isEmpty())
        return;
    select(std::clamp(m_at + (step > 0 ? 1 : -1), 0, int(m_results.size()) - 1));
}

void ImagePicker::select(int index)
{
    if (index < 0 || index >= m_results.size() || index == m_at)
        return;
    m_at = index;
    emit atChanged();
}

void ImagePicker::choose(int index)
{
    if (index >= 0)
        select(index);
    if (m_at >= 0 && m_at < m_results.size())
        emit chosen(m_results[m_at]);
}

void ImagePicker::close()
{
    m_pause.stop();
    m_calls.abandonLatest();
    emit closed();
}

} // namespace orvel
