#pragma once
#include <QString>

namespace cardserver {

// What a dictionary label says about the sense or translation it marks.
enum class LabelKind {
    Unknown,  // not a label: bracketed context words ("[jdm.]", "[human]")
    Subject,  // the kind of thing meant, common in everyday words: "zool.", "cook.", "school"
    Domain,   // a specialist field: "techn.", "med.", "jur."
    Register, // a style of speech: "ugs.", "geh.", "slang", "formal", "fig."
    Regional, // a region's word: "Ös.", "Schw.", "Sc.", "Austr."
    Variety,  // a national standard: "Am.", "Br." English, "Dt." for the German of Germany
    Dated,    // "veraltet", "archaic", "obs.", "rare", "hist."
};

// The labels FreeDict's dictionaries put before a sense ("[zool.] dog") and after a translation
// ("corf [Br.]"), as they occur in the Ding-derived German dictionary and the Ergane-derived
// others ("[cul] whisk").
struct DictLabel {
    LabelKind kind = LabelKind::Unknown;
    QString name; // "Zoology", "Colloquial"; the label itself when unknown

    static DictLabel of(const QString &label);
    // Whether a sense or translation so labelled is one a learner rarely means by the word:
    // a specialist, stylistic, regional or dated use.
    bool marked() const;
    // Whether the label tells a learner something about using the word, as a usage note does;
    // subjects ("Zoology" for a dog) and unknown labels do not.
    bool usage() const;
};

// Whether a note after a translation describes that translation as a non-standard form rather
// than explaining its meaning: "used to represent American speech", "phonetic spelling",
// "rare and slightly affected", "old-fashioned", "offensive word".
bool isRegisterNote(const QString &note);

} // namespace cardserver
