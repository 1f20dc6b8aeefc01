/// Which container and which codecs an export goes by, as the rule book and this build of FFmpeg have them.
#pragma once

#include <string>

#include "norvex-export/Request.h"
#include "norvex/Conf/Review/PresetCheck.h"

namespace NorvexExport {

/// Throws RequestError for a container that is unknown or that this build cannot write.
Norvex::Conf::NamedHelper FindFormat(const std::string& formatId);

/// Throws RequestError for a codec that the container does not carry or that this build cannot encode.
void RequireEncodable(const Norvex::Conf::NamedHelper& format, const std::string& kind, const std::string& streamType,
                      const std::string& codecId);

/// The rules of a codec. Throws RequestError as RequireEncodable does, and where there are none.
Norvex::Conf::NamedHelper FindCodec(const Norvex::Conf::NamedHelper& format, const std::string& kind,
                                    const std::string& streamType, const std::string& codecId);

/// The container's first default stream of a type, or null.
const Norvex::Core::Property* FindStream(const Norvex::Core::Property& format, const std::string& type);

/// The codec that was chosen, or the container's default where none was or the choice was left to the system.
std::string CodecOf(const Request& request, const Norvex::Core::Property& stream, const std::string& kind);

}  // namespace NorvexExport
