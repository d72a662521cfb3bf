#include "zo_mutex.h"

ZoMutex::ZoMutex()
{
    pthread_mutex_init(&m_mutex, nullptr);
}

ZoMutex::~ZoMutex()
{
    pthread_mutex_destroy(&m_mutex);
}

int ZoMutex::Lock()
{
    return pthread_mutex_lock(&m_mutex);
}

int ZoMutex::Unlock()
{
    return pthread_mutex_unlock(&m_mutex);
}
