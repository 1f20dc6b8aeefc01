#pragma once

#include <atomic>
#include <boost/smart_ptr/intrusive_ptr.hpp>
#include <cstdint>
#include <utility>

#include "norvex/foundation/Export.h"

namespace Norvex {

/// Root of everything that is handed out by pointer. The object destroys itself when the last reference is
/// released; SP<T> takes and releases references.
class NORVEX_API IRefCountable {
public:
    virtual ~IRefCountable() = default;

    /// Takes one reference and returns the new count.
    virtual std::uint32_t AddRef() const = 0;
    virtual std::uint32_t GetRefCount() const = 0;
    /// Gives one reference back and returns the new count. At 0 the object is gone.
    virtual std::uint32_t Release() const = 0;

protected:
    IRefCountable() = default;
    IRefCountable(const IRefCountable&) = default;
    IRefCountable& operator=(const IRefCountable&) = default;
};

/// The counter that a concrete class holds. It starts at 0 and counts atomically, since helpers and constraints
/// are shared between threads.
class NORVEX_API RefCountImpl {
public:
    RefCountImpl() = default;
    ~RefCountImpl() = default;
    RefCountImpl(const RefCountImpl&) = delete;
    RefCountImpl& operator=(const RefCountImpl&) = delete;

    std::uint32_t AddRefImpl() const noexcept { return m_count.fetch_add(1, std::memory_order_relaxed) + 1; }
    std::uint32_t GetRefCountImpl() const noexcept { return m_count.load(std::memory_order_relaxed); }
    /// The release order makes what other owners wrote visible to the one that destroys.
    std::uint32_t ReleaseImpl() const noexcept { return m_count.fetch_sub(1, std::memory_order_acq_rel) - 1; }

private:
    mutable std::atomic<std::uint32_t> m_count{0};
};

/// Gives any interface its reference counting: the base of every concrete class.
template <class Base>
class NORVEX_API RefCounted : public Base {
public:
    std::uint32_t AddRef() const override { return m_refCount.AddRefImpl(); }
    std::uint32_t GetRefCount() const override { return m_refCount.GetRefCountImpl(); }
    std::uint32_t Release() const override {
        const std::uint32_t count = m_refCount.ReleaseImpl();
        if (count == 0) delete this;
        return count;
    }

protected:
    using Base::Base;
    RefCounted() = default;

private:
    RefCountImpl m_refCount;
};

inline void intrusive_ptr_add_ref(const IRefCountable* object) {
    object->AddRef();
}
inline void intrusive_ptr_release(const IRefCountable* object) {
    object->Release();
}

template <class T>
using SP = boost::intrusive_ptr<T>;

}  // namespace Norvex
