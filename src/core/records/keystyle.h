#pragma once

#include <QString>
#include <QStringView>

namespace orvel::json {

// How record field names become JSON keys. Replies are always read with Snake keys; the two
// "literal" request bodies are written with Literal keys so that dictionary-like bodies keep
// their spelling.
enum class KeyStyle { Snake, Literal };

// The one conversion from a camelCase field name to its snake_case wire key:
// "nativeLanguage" -> "native_language", "id" -> "id", "sourceURL" -> "source_url".
// Leading and trailing underscores are kept as they are.
QString snakeCase(QStringView camel);

} // namespace orvel::json
