// Lets several threads work on batches, and writes the results in the order of the batches.

#ifndef TOOLS_SCAN_PIPELINE_ORDERED_WORK_H
#define TOOLS_SCAN_PIPELINE_ORDERED_WORK_H

#include "scan/pipeline/batch.h"

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

/// The thread that makes the batches also writes the results, and works on batches itself while
/// many are waiting. So with one thread there are no others.
///
/// At most four batches for each thread are there at a time, and no more of them than 64 MiB in
/// all, or one. So memory is bounded.
class ordered_work {
public:
    /// Works on a batch. Each thread has one such function, with its own state.
    using work_function = std::function<void(batch&)>;
    /// Writes a batch that was worked on. False if no more is wanted.
    using write_function = std::function<bool(batch&)>;

    /// @param make_work  makes the function of one thread
    ordered_work(unsigned threads, const std::function<work_function()>& make_work,
                 write_function write);
    /// Waits for the other threads; batches that were not written are dropped.
    ~ordered_work();
    ordered_work(const ordered_work&) = delete;
    ordered_work& operator=(const ordered_work&) = delete;

    /// An empty batch, one that was written before if there is one.
    std::unique_ptr<batch> fresh();
    /// Takes a batch to be worked on and written.
    /// @return false once the write function has returned false
    /// @throws what a work function has thrown
    bool take(std::unique_ptr<batch> full);
    /// Waits until all batches are written.
    /// @return and throws as take does
    bool finish();

private:
    struct job {
        std::unique_ptr<batch> m_batch;
        bool m_is_done = false;
        std::exception_ptr m_error;
    };

    void run_worker(const work_function& work);
    static void work_on(job& one, const work_function& work) noexcept;
    bool write_first_if_done();
    bool is_full();
    void work_or_wait();

    const std::size_t m_most_jobs;
    const work_function m_own_work;
    const write_function m_write;
    std::vector<std::unique_ptr<batch>> m_written; // to be used again; of the making thread alone
    bool m_goes_on = true;                         // of the making thread alone
    std::size_t m_bytes = 0; // of the batches in m_jobs; of the making thread alone

    std::mutex m_mutex; // of the members that follow
    std::condition_variable m_there_is_work;
    std::condition_variable m_job_is_done;
    std::deque<std::unique_ptr<job>> m_jobs; // all, in the order of the batches
    std::deque<job*> m_waiting;              // those that no thread has taken
    bool m_is_over = false;

    std::vector<std::thread> m_workers;
};

#endif
