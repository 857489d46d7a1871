#pragma once

#include "records/field.h"
#include "records/note.h"

#include <QObject>
#include <QString>

namespace orvel {

// The reply of a single-line annotate call: the note as it now stands.
struct Reply {
    Q_GADGET
    Q_PROPERTY(Note note MEMBER note)
public:
    Note note{};

    bool operator==(const Reply &) const = default;

    static constexpr auto fields = std::make_tuple(json::field("note", &Reply::note));
};

} // namespace orvel
