#pragma once

#include <memory>
#include <utility>

/// Statics of the library that outlive those of the host. A host's static may keep a helper and ask it in its
/// destructor, though it was made before the first lookup and so is destroyed after what the lookup made. Nothing here
/// is therefore destroyed among the static destructors of the process, but by functions of the section .fini_array that
/// have a priority: those run behind all static destructors, and when the library is unloaded. Not for hosts.

/// Begins the definition of a constant: NORVEX_CONSTANT(const std::string, Class::NAME) = "name";
/// It is made ahead of every static of a host that links the library statically, in whatever order. g++ destroys by
/// priority itself, with the option -fno-use-cxa-atexit under which the library is built.
#ifdef __clang__
#define NORVEX_CONSTANT(Type, name)                                   \
    [[gnu::destructor(101)]] static void NORVEX_DESTROY(__LINE__)() { \
        std::destroy_at(&name);                                       \
    }                                                                 \
    [[clang::no_destroy]] [[gnu::init_priority(101)]] Type name
#define NORVEX_DESTROY(line) NORVEX_DESTROY_IN(line)
#define NORVEX_DESTROY_IN(line) DestroyConstantOfLine##line
#else
#define NORVEX_CONSTANT(Type, name) [[gnu::init_priority(101)]] Type name
#endif

namespace Norvex {

/// What is destroyed behind all static destructors.
struct LastingObject {
    LastingObject() = default;
    LastingObject(const LastingObject&) = delete;
    LastingObject& operator=(const LastingObject&) = delete;
    virtual ~LastingObject() = default;

    LastingObject* madeBefore = nullptr;
};

/// Throws Exception before the constants are made: what is made of them would be wrong for good. Only code of a host
/// that links the library statically and runs ahead of all its statics comes so early.
void KeepToTheEnd(std::unique_ptr<LastingObject> object);

/// Makes the value last, for a static within a function: static const std::string& path = Lasting(Path(...));
template <class T>
T& Lasting(T value) {
    struct Holder final : LastingObject {
        explicit Holder(T&& source) : held(std::move(source)) {}
        T held;
    };
    auto holder = std::make_unique<Holder>(std::move(value));
    T& held = holder->held;
    KeepToTheEnd(std::move(holder));
    return held;
}

}  // namespace Norvex
