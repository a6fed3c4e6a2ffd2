// SPDX-License-Identifier: GPL-2.0-or-later
// The locked first-in-first-out queue that hands encoded frames from the capture thread to the writer.
#pragma once

#include <cstddef>
#include <deque>
#include <limits>
#include <mutex>

// Carries plain pointers; whoever takes a record owns it. A queue whose
// reader has stopped must not take the device's memory with it: past
// `capacity` records it refuses more.
struct OSAL_QUEUE
{
    std::mutex mutex;
    std::deque<void *> records;
    std::size_t capacity = std::numeric_limits<std::size_t>::max();
};

// Appends a record; non-zero when it could not be queued (full, or out of memory).
int OSAL_Queue(OSAL_QUEUE *queue, void *record);
// The oldest record, or null when the queue is empty.
void *OSAL_Dequeue(OSAL_QUEUE *queue);
