#pragma once

#include <string>

/// The names that Names.h gives out, as tables. Not for hosts.

namespace Norvex::Conf {

/// What the values of a parameter are, and so how they are written.
enum class Unit {
    Section,  ///< no value of its own
    Text,     ///< named value by value
    Count,
    Flag,
    BitsPerSecond,
    Hertz,
    FramesPerSecond,
    Pixels,
    Frames,
    Bits,
    Bytes,
    Microseconds,
    Milliseconds,
    PerCent,
    Factor,
    Colour,  ///< 0xAARRGGBB
    FourCC,
    SampleFormat,
    Layout,
    FrameSize,  ///< a mode by its name, or a node with width and height
    Container,
    Codec,
};

/// A row refers to the vocabulary. The tables are made on first use: as constants they would have the dynamic linker
/// look up each of hundreds of names while the library is loaded, be they asked for or not.
struct IdName {
    IdName(const std::string& ofId, const char* text, const char* besides) : id(&ofId), name(text), more(besides) {}

    const std::string* id;
    const char* name;
    const char* more;  ///< of a codec, what else it is called; of a container, its extensions with blanks between
};

struct TagName {
    TagName(const std::string& ofTag, const char* text, Unit of) : tag(&ofTag), name(text), unit(of) {}

    const std::string* tag;
    const char* name;
    Unit unit;
};

// Null for what the tables do not hold.
const IdName* FindIdName(const std::string& kind, const std::string& id);
const TagName* FindTagName(const std::string& tag);
const char* FindValueName(const std::string& tag, const std::string& value);

}  // namespace Norvex::Conf
