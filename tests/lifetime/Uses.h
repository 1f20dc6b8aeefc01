#pragma once

/// What statics of a host do with the library. The process ends with status 1 at the first wrong answer.

/// Something of the library that is kept: helpers of each kind, and what they hand out.
struct Kept;

extern "C" {
__attribute__((visibility("default"))) Kept* Take();
/// Asks what is kept, and everything else that the library holds for good, and gives it back.
__attribute__((visibility("default"))) void AskAndGiveBack(Kept* kept);
/// Whether the library answers this early. Where it does not, it throws a Norvex::Exception.
__attribute__((visibility("default"))) bool Answers();
}
