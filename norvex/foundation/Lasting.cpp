#include "norvex/foundation/Lasting.h"

#include <atomic>

#include "norvex/foundation/Exception.h"

namespace Norvex {

namespace {

// Both are there before anything runs.
std::atomic<bool> g_constantsAreMade{false};
std::atomic<LastingObject*> g_last{nullptr};

/// Behind the constants, which have the priority ahead.
[[gnu::constructor(102)]] void TellThatConstantsAreMade() {
    g_constantsAreMade = true;
}

/// Ahead of the constants: destructors run from high priorities to low ones.
[[gnu::destructor(102)]] void DestroyAll() {
    for (LastingObject* object = g_last.exchange(nullptr); object != nullptr;) {
        const std::unique_ptr<LastingObject> last(object);
        object = last->madeBefore;
    }
}

}  // namespace

void KeepToTheEnd(std::unique_ptr<LastingObject> object) {
    if (!g_constantsAreMade) {
        Exception exception;
        exception << TagDescription("The library is asked before its constants are made");
        NORVEX_THROW(AddStack(exception));
    }
    object->madeBefore = g_last;
    while (!g_last.compare_exchange_weak(object->madeBefore, object.get())) {
    }
    object.release();
}

}  // namespace Norvex
