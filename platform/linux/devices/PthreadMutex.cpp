#include "DDevIo.h"

#include <system_error>

#include <pthread.h>

namespace DDevIo
{

namespace
{

void check(int error, const char* what)
{
    if (error != 0) {
        throw std::system_error(error, std::generic_category(), what);
    }
}

/** Attributes of a mutex, while it is made. */
class Attributes
{
public:
    Attributes() { check(::pthread_mutexattr_init(&m_attributes), "pthread_mutexattr_init"); }
    ~Attributes() { ::pthread_mutexattr_destroy(&m_attributes); }
    Attributes(const Attributes&) = delete;
    Attributes& operator=(const Attributes&) = delete;
    pthread_mutexattr_t* get() { return &m_attributes; }

private:
    pthread_mutexattr_t m_attributes{};
};

} // namespace

class PthreadMutex::Implementation
{
public:
    explicit Implementation(int type)
    {
        Attributes attributes;
        check(::pthread_mutexattr_settype(attributes.get(), type), "pthread_mutexattr_settype");
        check(::pthread_mutex_init(&m_mutex, attributes.get()), "pthread_mutex_init");
    }
    ~Implementation() { ::pthread_mutex_destroy(&m_mutex); }
    Implementation(const Implementation&) = delete;
    Implementation& operator=(const Implementation&) = delete;
    pthread_mutex_t* get() { return &m_mutex; }

private:
    pthread_mutex_t m_mutex{};
};

PthreadMutex::PthreadMutex(int type) : m_implementation(std::make_unique<Implementation>(type)) {}

PthreadMutex::~PthreadMutex() = default;

void PthreadMutex::lock()
{
    check(::pthread_mutex_lock(m_implementation->get()), "pthread_mutex_lock");
}

void PthreadMutex::unlock()
{
    check(::pthread_mutex_unlock(m_implementation->get()), "pthread_mutex_unlock");
}

} // namespace DDevIo
