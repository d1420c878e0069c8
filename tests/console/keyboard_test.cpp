// The key ring: order across the wrap, the 127-key limit, clearing, and two threads meeting under the
// host's lock.
#include "console/keyboard.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "support/test_console.h"

namespace {

// A ring wired to a host that counts how often its lock is taken and released.
struct key_ring : c_keyboard {
    struct counting_host : c_test_host {
        void lock() override { mutex.lock(); ++locks; }
        void unlock() override { ++unlocks; mutex.unlock(); }
        int locks = 0, unlocks = 0;
    };
    key_ring()
    {
        resource.p_callback = &host;
        p_system_resource = &resource;
    }
    counting_host host;
    c_system_resource resource;
};

}  // namespace

TEST(key_ring, holds_127_keys_in_order_across_the_wrap_and_drops_the_128th)
{
    key_ring ring;
    EXPECT_EQ(ring.room(), 127);
    for (int key = 1; key <= 128; ++key)
        ring.push_key(key);
    EXPECT_EQ(ring.room(), 0);
    EXPECT_EQ(ring.pop_key(), 1);
    ring.push_key(500);  // into the last slot: the write index wraps
    EXPECT_EQ(ring.room(), 0);
    ring.push_key(501);  // full again: dropped
    EXPECT_EQ(ring.pop_key(), 2);
    EXPECT_EQ(ring.room(), 1);  // counted across the wrap
    for (int key = 3; key <= 127; ++key)
        ASSERT_EQ(ring.pop_key(), key);
    EXPECT_EQ(ring.pop_key(), 500);  // the read index wraps
    EXPECT_EQ(ring.pop_key(), 0);
    EXPECT_FALSE(ring.kbhit());
}

TEST(key_ring, reports_waiting_keys_gives_a_pushed_zero_back_and_clears_under_the_lock)
{
    key_ring ring;
    EXPECT_FALSE(ring.kbhit());
    ring.push_key(0);
    ring.push_key(65);
    EXPECT_TRUE(ring.kbhit());
    EXPECT_EQ(ring.pop_key(), 0);
    ring.clear_keybuffer();
    EXPECT_FALSE(ring.kbhit());
    EXPECT_EQ(ring.pop_key(), 0);
    EXPECT_EQ(ring.host.locks, 8);  // once for every operation
    EXPECT_EQ(ring.host.unlocks, 8);
}

TEST(key_ring, hands_keys_from_a_pushing_thread_to_a_popping_thread_in_order)
{
    key_ring ring;
    constexpr int key_count = 20000;
    std::atomic<int> taken{0};
    std::thread pusher([&] {
        for (int key = 1; key <= key_count; ++key) {
            while (key - taken.load() > 100)  // stays this far ahead, so the ring never fills
                std::this_thread::yield();
            ring.push_key(key);
        }
    });
    int out_of_order = 0;
    while (taken.load() < key_count) {
        if (int key = ring.pop_key(); key != 0)
            out_of_order += key != taken.fetch_add(1) + 1;
        else
            std::this_thread::yield();
    }
    pusher.join();
    EXPECT_EQ(out_of_order, 0);
    EXPECT_FALSE(ring.kbhit());
}
