// SPDX-License-Identifier: GPL-2.0-or-later
// The locked first-in-first-out queue that hands encoded frames from the capture thread to the writer.
#include "osalqueue.h"

#include <new>

int OSAL_Queue(OSAL_QUEUE *queue, void *record)
{
    std::lock_guard<std::mutex> lock(queue->mutex);
    if (queue->records.size() >= queue->capacity)
        return -1;
    try {
        queue->records.push_back(record);
    } catch (const std::bad_alloc &) {
        return -1;
    }
    return 0;
}

void *OSAL_Dequeue(OSAL_QUEUE *queue)
{
    std::lock_guard<std::mutex> lock(queue->mutex);
    if (queue->records.empty())
        return nullptr;
    void *record = queue->records.front();
    queue->records.pop_front();
    return record;
}
