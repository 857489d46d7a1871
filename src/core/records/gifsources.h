#pragma once

#include "records/field.h"

#include <QObject>
#include <QString>

namespace orvel {

// Which animated-picture providers the server can search.
struct GifSources {
    Q_GADGET
    Q_PROPERTY(bool tenor MEMBER tenor)
    Q_PROPERTY(bool giphy MEMBER giphy)
public:
    bool tenor = false;
    bool giphy = false;

    bool operator==(const GifSources &) const = default;

    static constexpr auto fields = std::make_tuple(json::field("tenor", &GifSources::tenor),
                                                   json::field("giphy", &GifSources::giphy));
};

} // namespace orvel
