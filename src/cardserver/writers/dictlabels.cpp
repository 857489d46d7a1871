#include "dictlabels.h"

#include <QHash>
#include <QRegularExpression>

namespace cardserver {

namespace {

const QHash<QString, DictLabel> &labels()
{
    using K = LabelKind;
    static const QHash<QString, DictLabel> table = [] {
        QHash<QString, DictLabel> t;
        const auto add = [&](K kind, const char *name, std::initializer_list<const char *> keys) {
            for (const char *key : keys)
                t.insert(QString::fromUtf8(key), {kind, QString::fromUtf8(name)});
        };
        // Subjects: the dictionary files animals under "zool." and buildings under "constr.",
        // so these mark everyday words as often as specialist ones.
        add(K::Subject, "Zoology", {"zool."});
        add(K::Subject, "Botany", {"bot."});
        add(K::Subject, "Ornithology", {"ornith."});
        add(K::Subject, "Anatomy", {"anat."});
        add(K::Subject, "Biology", {"biol."});
        add(K::Subject, "Mycology", {"myc."});
        add(K::Subject, "Cooking", {"cook.", "cul"});
        add(K::Subject, "Agriculture", {"agr."});
        add(K::Subject, "Society", {"soc."});
        add(K::Subject, "School", {"school"});
        add(K::Subject, "University", {"stud."});
        add(K::Subject, "Geography", {"geogr."});
        add(K::Subject, "Sport", {"sport"});
        add(K::Subject, "Textiles", {"textil."});
        add(K::Subject, "Building", {"constr."});
        add(K::Subject, "Architecture", {"arch."});
        add(K::Subject, "Motoring", {"auto"});
        add(K::Subject, "Transport", {"transp."});
        add(K::Subject, "Music", {"mus.", "mus"});
        add(K::Subject, "Art", {"art"});
        add(K::Subject, "Cinema", {"cine"});
        add(K::Subject, "Religion", {"relig."});
        add(K::Subject, "Politics", {"pol."});
        add(K::Subject, "Weather", {"meteo."});
        add(K::Subject, "Astronomy", {"astron."});
        add(K::Subject, "Environment", {"envir."});
        add(K::Subject, "Literature", {"lit."});
        add(K::Subject, "Trademark", {"tm"});

        add(K::Domain, "Technology", {"techn."});
        add(K::Domain, "Mechanical engineering", {"mach."});
        add(K::Domain, "Electrical engineering", {"electr."});
        add(K::Domain, "Chemistry", {"chem."});
        add(K::Domain, "Biochemistry", {"biochem."});
        add(K::Domain, "Physics", {"phys."});
        add(K::Domain, "Mathematics", {"math."});
        add(K::Domain, "Statistics", {"statist."});
        add(K::Domain, "Computing", {"comp."});
        add(K::Domain, "Telecommunications", {"telco."});
        add(K::Domain, "Medicine", {"med.", "med"});
        add(K::Domain, "Pharmacy", {"pharm."});
        add(K::Domain, "Psychology", {"psych."});
        add(K::Domain, "Law", {"jur."});
        add(K::Domain, "Administration", {"adm."});
        add(K::Domain, "Economics", {"econ."});
        add(K::Domain, "Finance", {"fin."});
        add(K::Domain, "Military", {"mil."});
        add(K::Domain, "Mining", {"min.", "mining"});
        add(K::Domain, "Geology", {"geol.", "geol"});
        add(K::Domain, "Nautical", {"naut."});
        add(K::Domain, "Aviation", {"aviat."});
        add(K::Domain, "Printing", {"print"});
        add(K::Domain, "Photography", {"photo."});
        add(K::Domain, "Linguistics", {"ling."});
        add(K::Domain, "Philosophy", {"phil."});
        add(K::Domain, "Science", {"sci."});
        add(K::Domain, "Astrology", {"astrol."});

        add(K::Register, "Colloquial", {"ugs.", "coll."});
        add(K::Register, "Elevated", {"geh."});
        add(K::Register, "Formal", {"formal"});
        add(K::Register, "Figurative", {"übtr.", "fig."});
        add(K::Register, "Pejorative", {"pej."});
        add(K::Register, "Vulgar", {"vulg."});
        add(K::Register, "Humorous", {"humor."});
        add(K::Register, "Ironic", {"iron."});
        add(K::Register, "Euphemistic", {"euphem."});
        add(K::Register, "Slang", {"slang"});
        add(K::Register, "Poetic", {"poet."});
        add(K::Register, "Literary", {"literary"});
        add(K::Register, "Proverb", {"Sprw.", "prov."});
        add(K::Register, "Youth slang", {"Jugendsprache"});
        add(K::Register, "Children's language", {"Kindersprache", "children's speech"});
        add(K::Register, "Hunters' language", {"Jägersprache", "hunters' parlance"});
        add(K::Register, "Jargon", {"professional"});

        add(K::Regional, "Austrian", {"Ös."});
        add(K::Regional, "Eastern Austrian", {"Ostös."});
        add(K::Regional, "Western Austrian", {"Westös."});
        add(K::Regional, "Swiss", {"Schw."});
        add(K::Regional, "Bavarian", {"Bayr."});
        add(K::Regional, "Northern German", {"Norddt."});
        add(K::Regional, "Southern German", {"Süddt."});
        add(K::Regional, "Central German", {"Mitteldt."});
        add(K::Regional, "Western German", {"Westdt."});
        add(K::Regional, "Eastern German", {"Ostdt."});
        add(K::Regional, "North-eastern German", {"Nordostdt."});
        add(K::Regional, "North-western German", {"Nordwestdt."});
        add(K::Regional, "South-western German", {"Südwestdt."});
        add(K::Regional, "West Central German", {"Mittelwestdt."});
        add(K::Regional, "East Central German", {"Mittelostdt.", "Ostmitteldt."});
        add(K::Regional, "South Tyrolean", {"Südtirol"});
        add(K::Regional, "Baden-Württemberg", {"BW"});
        add(K::Regional, "Luxembourg", {"Lux."});
        add(K::Regional, "Liechtenstein", {"Lie."});
        add(K::Regional, "Scottish", {"Sc."});
        add(K::Regional, "Irish", {"Ir."});
        add(K::Regional, "Australian", {"Austr."});
        add(K::Regional, "New Zealand", {"NZ"});
        add(K::Regional, "Canadian", {"Can."});
        add(K::Regional, "South African", {"South Africa"});
        add(K::Regional, "Indian English", {"India"});
        add(K::Regional, "Northern English", {"Northern English"});
        add(K::Regional, "Dialect", {"dialect"});

        // The standard of one country: American or British English, the German of Germany.
        add(K::Variety, "Used in Germany", {"Dt."});
        add(K::Variety, "American", {"Am."});
        add(K::Variety, "British", {"Br."});
        add(K::Variety, "Chiefly American", {"eAm."});
        add(K::Variety, "Chiefly British", {"eBr."});

        add(K::Dated, "Dated", {"alt", "veraltet", "dated"});
        add(K::Dated, "Becoming dated", {"veraltend", "becoming dated"});
        add(K::Dated, "Archaic", {"altertümlich", "archaic"});
        add(K::Dated, "Obsolete", {"obs."});
        add(K::Dated, "Rare", {"selten", "rare"});
        add(K::Dated, "Former name", {"frühere Bezeichnung", "former name"});
        add(K::Dated, "Historical", {"hist."});
        return t;
    }();
    return table;
}

} // namespace

DictLabel DictLabel::of(const QString &label)
{
    const QString key = label.trimmed();
    const auto it = labels().constFind(key);
    return it == labels().constEnd() ? DictLabel{LabelKind::Unknown, key} : *it;
}

bool DictLabel::marked() const
{
    return kind == LabelKind::Domain || kind == LabelKind::Register ||
           kind == LabelKind::Regional || kind == LabelKind::Dated;
}

bool DictLabel::usage() const
{
    return marked() || kind == LabelKind::Variety;
}

bool isRegisterNote(const QString &note)
{
    // Anchored at the start: "humorously for 'die'" is a register, "affected with combat
    // fatigue" explains a meaning.
    static const QRegularExpression pattern(
        QStringLiteral("^(?:(?:very|slightly|rather|chiefly|mostly)\\s+)?"
                       "(?:rare|obsolete|archaic|old-fashioned|dated|colloquial|informal|slang|"
                       "slangy|vulgar|offensive|derogatory|pejorative|humorously|jocular|"
                       "poetically|children's speech|phonetic spelling|used to represent)\\b"),
        QRegularExpression::CaseInsensitiveOption);
    return pattern.match(note.trimmed()).hasMatch();
}

} // namespace cardserver
