#pragma once

#include <condition_variable>
#include <deque>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>

namespace qvslv {

/// Does jobs in a thread of its own, in their order, so that a run goes on while the system makes its files. Where no
/// thread can be had, a job is done when it is posted.
class WriterThread {
public:
  WriterThread();
  WriterThread(const WriterThread&) = delete;
  WriterThread& operator=(const WriterThread&) = delete;
  /// Jobs that were not begun are dropped.
  ~WriterThread();

  /// Waits while too many jobs are in line, so that they need bounded memory. A job that throws is the last one: the
  /// next call of this function or of `finish` throws the same, and jobs behind it are dropped.
  void post(std::function<void()> job);
  /// Waits until all jobs are done.
  void finish();

private:
  void work();
  void tell_failure();

  std::mutex m_mutex;
  std::condition_variable m_changed;
  std::deque<std::function<void()>> m_jobs;  ///< the first one is under way
  std::exception_ptr m_failure;              ///< not told yet
  bool m_failed = false, m_ending = false;
  std::thread m_thread;
};

}  // namespace qvslv
