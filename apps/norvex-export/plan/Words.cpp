#include "Words.h"

namespace NorvexExport {

using namespace Norvex;

namespace {

std::string FpsText(const Core::Ratio& rate) {
    if (rate.denominator() == 1) return std::to_string(rate.numerator());
    std::string text = std::to_string(static_cast<double>(rate.numerator()) / static_cast<double>(rate.denominator()));
    return text.substr(0, text.find('.') + 3);
}

}  // namespace

std::string Join(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words) text += (text.empty() ? "" : ", ") + word;
    return text;
}

std::string SizeText(long long width, long long height) {
    return std::to_string(width) + "x" + std::to_string(height);
}

Core::Ratio ToRatio(const Fraction& fraction) {
    return {fraction.numerator, fraction.denominator};
}

std::string WordsFor(const VideoSource& source) {
    return source.codecId + ", " + SizeText(source.width, source.height) + ", " + FpsText(ToRatio(source.frameRate)) +
           " fps";
}

std::string WordsFor(const AudioSource& source) {
    return source.codecId + ", " + std::to_string(source.sampleRate) + " Hz, " + source.layout;
}

}  // namespace NorvexExport
