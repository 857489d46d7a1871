#include "writerfactory.h"

#include "dictionarywriter.h"
#include "llmwriter.h"

#include <QUrl>

namespace cardserver {

std::unique_ptr<Writer> makeWriter(const WriterConfig &config)
{
    const QString kind = config.kind.trimmed().toLower();
    if (kind.isEmpty() || kind == QLatin1String("dictionary"))
        return std::make_unique<DictionaryWriter>(config.dictionaryDir, config.tools);
    if (kind == QLatin1String("llm")) {
        if (config.llmUrl.trimmed().isEmpty() || config.llmModel.trimmed().isEmpty())
            throw WriterError(
                QStringLiteral("The llm writer needs --llm-url URL and --llm-model NAME."));
        const QUrl url(config.llmUrl.trimmed());
        if (url.scheme() != QLatin1String("http") && url.scheme() != QLatin1String("https"))
            throw WriterError(QStringLiteral("--llm-url must be an http or https address."));
        return std::make_unique<LlmWriter>(config.llmUrl.trimmed(), config.llmModel.trimmed(),
                                           config.llmKey, config.addresses);
    }
    throw WriterError(
        QStringLiteral("Unknown writer “%1”; use --writer dictionary or --writer llm.")
            .arg(config.kind));
}

} // namespace cardserver
