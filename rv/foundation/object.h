// Root of every class of the library, and the object protocol that each class carries.
//
// The protocol, the same for every class C:
//   C(const C& other, RVDeepFlagEnum flag)   0 copies through copyObject, any other value through
//                                            copyAttributes; without a flag it is the copy constructor
//   copyObject(other), copyAttributes(other) take over what `other` holds; nothing when it is none or
//                                            the object itself. `other` is not tested for its class.
//   cloneObject(), cloneAttributes()         a new object of the same class; none for a class that
//                                            cannot be copied
//   C::castDown(object)                      the argument as a C, without a test
//   debugOutput(level)                       does nothing
//
// What copying means is said by the types of the members: plain values and pointers are copied,
// rv::Owned<T> copies the contents of an owned object, rv::Uncopied<T> keeps its value.
#pragma once

#include <cstdint>
#include <memory>
#include <type_traits>
#include <utility>

#include "rv/export.h"

class RVObject;

// Flag of every copying constructor.
enum RVDeepFlagEnum { RVShallow = 0, RVDeep = 1 };

// Walking direction of every iterator: first to last or last to first.
enum RVIterDirectionEnum { RVForward = 1, RVBackward = 2 };

namespace rv {

// How an object behaves as a key of a hash map or hash set.
struct KeyHash {
    std::uint32_t hash;
    bool byValue;  // equal values are equal keys; otherwise only an object itself is
};

// Mixes an address into a hash. Hashes never reach a result: maps walk in insertion order.
inline std::uint32_t addressHash(const void* address) {
    const auto bits = static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(address));
    return static_cast<std::uint32_t>((bits * 0x9E3779B97F4A7C15ULL) >> 32);
}

}  // namespace rv

class RV_EXPORT RVObject {
public:
    RVObject() = default;
    RVObject(const RVObject&) = default;
    RVObject& operator=(const RVObject&) = default;
    virtual ~RVObject();

    virtual void copyObject(const RVObject* other);
    virtual void copyAttributes(const RVObject* other);
    virtual RVObject* cloneObject() const;
    virtual RVObject* cloneAttributes() const;
    virtual void debugOutput(int level) const;

    static RVObject* castDown(RVObject* object) { return object; }

    // Gives up the caller's hold on a heap object. Nothing in the library shares ownership, so the object
    // is destroyed.
    void vRelease() { delete this; }

    // Key behaviour in hash maps and sets: identity, unless a class compares by value.
    virtual rv::KeyHash keyHash() const { return {rv::addressHash(this), false}; }
    // Asked only of two by-value keys of equal hash.
    virtual bool keyEquals(const RVObject& other) const { return this == &other; }
};

namespace rv {

template <class T>
void assignFrom(T& target, const RVObject* source) {
    if (source == nullptr || source == &target) return;
    if constexpr (std::is_copy_assignable_v<T>) target = static_cast<const T&>(*source);
}

template <class T>
T* clone(const T& source, RVDeepFlagEnum flag) {
    if constexpr (std::is_constructible_v<T, const T&, RVDeepFlagEnum>) {
        return new T(source, flag);
    } else {
        return nullptr;
    }
}

// A member object that lives and dies with its owner and is copied by its contents. Getters of owned
// lists are const and give a pointer that may be used to change the list.
template <class T>
class Owned {
public:
    Owned() = default;
    T* get() const { return &m_object; }
    T* operator->() const { return &m_object; }
    T& operator*() const { return m_object; }

private:
    mutable T m_object;
};

// The same for a member object that may be exchanged for another one.
template <class T>
class Exchangeable {
public:
    Exchangeable() : m_object(std::make_unique<T>()) {}
    Exchangeable(const Exchangeable& other) : Exchangeable() { *this = other; }
    Exchangeable& operator=(const Exchangeable& other) {
        if (this != &other) *m_object = *other.m_object;
        return *this;
    }
    ~Exchangeable() = default;
    T* get() const { return m_object.get(); }
    T* operator->() const { return m_object.get(); }
    T& operator*() const { return *m_object; }
    // Takes another object over and destroys the present one; none stands for a new one. Gives the object.
    T* take(T* object) {
        if (object != m_object.get()) m_object.reset(object != nullptr ? object : new T());
        return m_object.get();
    }

private:
    std::unique_ptr<T> m_object;
};

// A member that copying its owner leaves alone: it keeps the value that its own object gave it.
template <class T>
class Uncopied {
public:
    Uncopied() = default;
    Uncopied(T value) : m_value(std::move(value)) {}
    Uncopied(const Uncopied&) {}
    Uncopied& operator=(const Uncopied&) { return *this; }
    Uncopied& operator=(T value) {
        m_value = std::move(value);
        return *this;
    }
    ~Uncopied() = default;
    operator const T&() const { return m_value; }
    const T& get() const { return m_value; }
    T& get() { return m_value; }

private:
    T m_value{};
};

}  // namespace rv

// NOLINTBEGIN(bugprone-macro-parentheses): C is the name of a class

// Declares the object protocol of class C; the class goes on with private members.
#define RV_OBJECT(C)                                                                           \
public:                                                                                        \
    C(const C& other, RVDeepFlagEnum flag = RVShallow);                                        \
    ~C() override;                                                                             \
    C& operator=(const C& other);                                                              \
    void copyObject(const RVObject* other) override;                                           \
    void copyAttributes(const RVObject* other) override;                                       \
    C* cloneObject() const override;                                                           \
    C* cloneAttributes() const override;                                                       \
    void debugOutput(int level) const override;                                                \
    static C* castDown(RVObject* object) { return static_cast<C*>(object); }                   \
    static const C* castDown(const RVObject* object) { return static_cast<const C*>(object); } \
                                                                                               \
private:

// Defines what RV_OBJECT declares, on the memberwise assignment of C.
#define RV_OBJECT_IMPL(C)                                              \
    C::C(const C& other, RVDeepFlagEnum flag) : C() {                  \
        flag == 0 ? C::copyObject(&other) : C::copyAttributes(&other); \
    }                                                                  \
    C::~C() = default;                                                 \
    C& C::operator=(const C&) = default;                               \
    RV_OBJECT_COPY_IMPL(C)

// The part of RV_OBJECT_IMPL for classes that write constructors, destructor and assignment themselves.
#define RV_OBJECT_COPY_IMPL(C)                                                      \
    void C::copyObject(const RVObject* other) { rv::assignFrom(*this, other); }     \
    void C::copyAttributes(const RVObject* other) { rv::assignFrom(*this, other); } \
    C* C::cloneObject() const { return rv::clone(*this, RVShallow); }               \
    C* C::cloneAttributes() const { return rv::clone(*this, RVDeep); }              \
    void C::debugOutput(int) const {}

// The protocol of a class that cannot be copied: cloning gives none, copying changes nothing.
#define RV_OBJECT_NO_COPY(C)                                                                   \
public:                                                                                        \
    C(const C&) = delete;                                                                      \
    C& operator=(const C&) = delete;                                                           \
    ~C() override;                                                                             \
    void copyObject(const RVObject* other) override;                                           \
    void copyAttributes(const RVObject* other) override;                                       \
    C* cloneObject() const override;                                                           \
    C* cloneAttributes() const override;                                                       \
    void debugOutput(int level) const override;                                                \
    static C* castDown(RVObject* object) { return static_cast<C*>(object); }                   \
    static const C* castDown(const RVObject* object) { return static_cast<const C*>(object); } \
                                                                                               \
private:

// Defines what RV_OBJECT_NO_COPY declares, but for the destructor.
#define RV_OBJECT_NO_COPY_IMPL(C) RV_OBJECT_COPY_IMPL(C)

// NOLINTEND(bugprone-macro-parentheses)
