#include "norvex/Conf/Review/EnumeratorNames.h"

namespace Norvex::Conf {

const char* NameOf(Finding::Source source) noexcept {
    switch (source) {
        case Finding::Source::Constraint:
            return "constraint";
        case Finding::Source::Rule:
            return "rule";
        case Finding::Source::Helper:
            break;
    }
    return "helper";
}

const char* NameOf(Finding::Verdict verdict) noexcept {
    switch (verdict) {
        case Finding::Verdict::Kept:
            return "kept";
        case Finding::Verdict::DoesNotApply:
            return "does_not_apply";
        case Finding::Verdict::Violated:
            break;
    }
    return "violated";
}

const char* NameOf(Finding::Problem problem) noexcept {
    switch (problem) {
        case Finding::Problem::None:
            return "none";
        case Finding::Problem::NotAllowed:
            return "not_allowed";
        case Finding::Problem::Missing:
            return "missing";
        case Finding::Problem::WrongType:
            return "wrong_type";
        case Finding::Problem::NoPlace:
            return "no_place";
        case Finding::Problem::TooMany:
            break;
    }
    return "too_many";
}

const char* NameOf(CorrectedValue::Reason reason) noexcept {
    switch (reason) {
        case CorrectedValue::Reason::Broken:
            return "broken";
        case CorrectedValue::Reason::Default:
            return "default";
        case CorrectedValue::Reason::Helper:
            break;
    }
    return "helper";
}

const char* NameOf(MendedValue::Outcome outcome) noexcept {
    switch (outcome) {
        case MendedValue::Outcome::Kept:
            return "kept";
        case MendedValue::Outcome::Corrected:
            return "corrected";
        case MendedValue::Outcome::Defaulted:
            return "defaulted";
        case MendedValue::Outcome::Dropped:
            break;
    }
    return "dropped";
}

const char* NameOf(StreamKind kind) noexcept {
    switch (kind) {
        case StreamKind::Video:
            return "video";
        case StreamKind::Audio:
            return "audio";
        case StreamKind::Subtitle:
            return "subtitle";
        case StreamKind::Cover:
            return "cover";
        case StreamKind::Other:
            break;
    }
    return "other";
}

const char* NameOf(StreamFit::Answer answer) noexcept {
    switch (answer) {
        case StreamFit::Answer::AsItIs:
            return "as_it_is";
        case StreamFit::Answer::Refused:
            return "refused";
        case StreamFit::Answer::Encoded:
            return "encoded";
        case StreamFit::Answer::LeftOut:
            break;
    }
    return "left_out";
}

}  // namespace Norvex::Conf
