#pragma once

#include <cstddef>
#include <tuple>
#include <type_traits>

namespace orvel::json {

// What a field does when its key is missing or null. std::optional members are always
// optional (missing or null -> nullopt) and need no rule of their own.
enum class Presence {
    Required,  // a reply without the key (or with null) does not decode
    Defaulted, // the member keeps its initialiser's value
};

// One field of a record: its camelCase name, the member it fills and its rule. A record lists
// its fields once, in a `static constexpr auto fields = std::make_tuple(...)`, and every
// generic operation (decoding, encoding, hashing) walks that list. The wire key is derived
// from `name` by the key style (snake_case for replies). Record members carry initialisers
// (`{}` at least) so that a record can be built with designated initialisers naming only some
// of its fields.
template <class Record, class Member> struct Field {
    using RecordType = Record;
    using MemberType = Member;

    const char *name;
    Member Record::*member;
    Presence presence;
};

template <class Record, class Member>
constexpr Field<Record, Member> field(const char *name, Member Record::*member)
{
    return {name, member, Presence::Required};
}

// A field that keeps its member initialiser's value when the key is missing or null.
template <class Record, class Member>
constexpr Field<Record, Member> defaulted(const char *name, Member Record::*member)
{
    return {name, member, Presence::Defaulted};
}

#ifndef Q_MOC_RUN // moc does not parse concepts
// A record: a value type with a `fields` list. A record that also declares
// `static constexpr bool lenient = true` treats every key as optional (missing or null keeps
// the member initialiser's value); value types are still checked.
template <class T>
concept Record = requires
{
    std::tuple_size<std::remove_cvref_t<decltype(T::fields)>>::value;
};

template <class T> constexpr bool isLenient()
{
    if constexpr (requires { T::lenient; })
        return T::lenient;
    else
        return false;
}

template <Record R>
constexpr std::size_t fieldCount = std::tuple_size_v<std::remove_cvref_t<decltype(R::fields)>>;
#endif

} // namespace orvel::json
