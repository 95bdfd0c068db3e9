#include "support/small_stack.h"

#include <exception>
#include <pthread.h>
#include <system_error>

namespace test_support {
namespace {

struct errand {
    const std::function<void()>& m_job;
    std::exception_ptr m_thrown;
};

void* run_errand(void* argument) {
    auto& given = *static_cast<errand*>(argument);
    try {
        given.m_job();
    } catch (...) {
        given.m_thrown = std::current_exception();
    }
    return nullptr;
}

void check(int status, const char* call) {
    if (status != 0) throw std::system_error(status, std::generic_category(), call);
}

class thread_attributes {
public:
    thread_attributes() { check(pthread_attr_init(&m_attributes), "pthread_attr_init"); }
    ~thread_attributes() { pthread_attr_destroy(&m_attributes); }
    thread_attributes(const thread_attributes&) = delete;
    thread_attributes& operator=(const thread_attributes&) = delete;

    pthread_attr_t* get() { return &m_attributes; }

private:
    pthread_attr_t m_attributes{};
};

} // namespace

void run_on_stack(std::size_t stack_bytes, const std::function<void()>& job) {
    errand given{job, nullptr};
    thread_attributes attributes;
    check(pthread_attr_setstacksize(attributes.get(), stack_bytes), "pthread_attr_setstacksize");
    pthread_t thread{};
    check(pthread_create(&thread, attributes.get(), run_errand, &given), "pthread_create");
    check(pthread_join(thread, nullptr), "pthread_join");
    if (given.m_thrown) std::rethrow_exception(given.m_thrown);
}

} // namespace test_support
