// A thread with a small stack, for tests of what must not need a deep one.
#pragma once

#include <gtest/gtest.h>
#include <pthread.h>

#include <cstddef>
#include <functional>

namespace rvtest {

// Runs something in a thread with a stack of so many KiB.
inline void withSmallStack(const std::function<void()>& f, std::size_t kibibytes = 256) {
    pthread_attr_t attributes;
    ASSERT_EQ(pthread_attr_init(&attributes), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, kibibytes << 10), 0);
    pthread_t thread;
    const auto call = [](void* function) -> void* {
        (*static_cast<const std::function<void()>*>(function))();
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&thread, &attributes, call, const_cast<std::function<void()>*>(&f)), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

}  // namespace rvtest
