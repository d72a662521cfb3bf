#include "zo_mutex.h"

#include <thread>
#include <vector>

#include <gtest/gtest.h>

TEST(ZoMutex, SerialisesThreads)
{
    ZoMutex mutex;
    long counter = 0;
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&] {
            for (int i = 0; i < 10000; ++i) {
                ZoMutexGuard guard(mutex);
                ++counter;
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(counter, 40000);
    EXPECT_EQ(mutex.Lock(), 0);
    EXPECT_EQ(mutex.Unlock(), 0);
}
