#include "Words.h"

#include <cctype>

namespace NorvexExport {

namespace {

std::string FpsText(const Norvex::Core::Ratio& rate) {
    if (rate.denominator() == 1) return std::to_string(rate.numerator());
    std::string text = std::to_string(static_cast<double>(rate.numerator()) / static_cast<double>(rate.denominator()));
    return text.substr(0, text.find('.') + 3);
}

}  // namespace

std::string Join(const std::vector<std::string>& words, const std::string& last) {
    std::string text;
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (i > 0) text += i + 1 == words.size() ? last : ", ";
        text += words[i];
    }
    return text;
}

std::string Capitalised(std::string text) {
    if (!text.empty()) text[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(text[0])));
    return text;
}

std::string SizeText(long long width, long long height) {
    return std::to_string(width) + "x" + std::to_string(height);
}

Norvex::Core::Ratio ToRatio(const Fraction& fraction) {
    return {fraction.numerator, fraction.denominator};
}

std::string StreamsText(const std::vector<int>& streams) {
    std::vector<std::string> numbers;
    numbers.reserve(streams.size());
    for (const int stream : streams) numbers.push_back(std::to_string(stream));
    return (streams.size() == 1 ? "stream " : "streams ") + Join(numbers, " and ");
}

std::string NameOf(StreamKind kind) {
    switch (kind) {
        case StreamKind::Video:
            return "picture";
        case StreamKind::Audio:
            return "sound";
        case StreamKind::Subtitle:
            return "subtitles";
        case StreamKind::Cover:
            return "cover";
        case StreamKind::Attachment:
            return "attachment";
        case StreamKind::Data:
            break;
    }
    return "data";
}

std::string WordsFor(const VideoSource& source) {
    std::string words = source.codecId + ", " + SizeText(source.width, source.height);
    if (!source.isAttachedPicture) words += ", " + FpsText(ToRatio(source.frameRate)) + " fps";
    if (source.orientation.degrees != 0) words += ", turned by " + std::to_string(source.orientation.degrees);
    if (source.orientation.isMirrored) words += ", mirrored";
    return words;
}

std::string WordsFor(const AudioSource& source) {
    return source.codecId + ", " + std::to_string(source.sampleRate) + " Hz, " + source.layout;
}

std::string WordsFor(const SubtitleSource& source) {
    return source.codecId;
}

std::string WordsFor(const AttachmentSource& source) {
    return source.fileName.empty() ? source.codecId : source.codecId + ", " + source.fileName;
}

std::string WordsFor(const StreamSource& source) {
    return source.codecId;
}

}  // namespace NorvexExport
