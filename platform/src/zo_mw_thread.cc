#include "zo_tv_support.h"

#include <pthread.h>

ZoMWThread::ZoMWThread(EntryFunc entry, const void* arg, IZoMWThreadEvt* evt)
    : m_entry(entry), m_arg(arg), m_evt(evt)
{
}

int ZoMWThread::Run(unsigned int /*hint*/)
{
    pthread_attr_t attr;
    int rc = pthread_attr_init(&attr);
    if (rc != 0) {
        return rc;
    }
    pthread_attr_setdetachstate(&attr, PTHREAD_CREATE_DETACHED);
    pthread_t thread;
    rc = pthread_create(&thread, &attr, &ZoMWThread::Trampoline, this);
    pthread_attr_destroy(&attr);
    return rc;
}

void* ZoMWThread::Trampoline(void* self)
{
    ZoMWThread* thread = static_cast<ZoMWThread*>(self);
    if (thread->m_entry != nullptr) {
        thread->m_entry(thread->m_arg);
    }
    if (thread->m_evt != nullptr) {
        thread->m_evt->OnThreadExit(thread->m_arg);
    }
    return nullptr;
}
