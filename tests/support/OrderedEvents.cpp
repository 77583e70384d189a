#include "tests/support/OrderedEvents.h"

#ifdef __SANITIZE_THREAD__

#include <QThread>

#include <sanitizer/tsan_interface.h>

// The linker redirects the program's calls to these functions (see --wrap in its manual), and their
// own calls to Qt.

void SendOn(QObject* sender, const QMetaObject* metaObject, int signal,
            void** arguments) __asm__("__real__ZN11QMetaObject8activateEP7QObjectPKS_iPPv");
void SendOrdered(QObject* sender, const QMetaObject* metaObject, int signal,
                 void** arguments) __asm__("__wrap__ZN11QMetaObject8activateEP7QObjectPKS_iPPv");

bool PostOn(QObject* receiver, QtPrivate::QSlotObjectBase* slot, Qt::ConnectionType type,
            void* result) __asm__("__real__"
                                  "ZN11QMetaObject16invokeMethodImplEP7QObjectPN9QtPrivate15QSlotOb"
                                  "jectBaseEN2Qt14"
                                  "ConnectionTypeEPv");
bool PostOrdered(QObject* receiver, QtPrivate::QSlotObjectBase* slot, Qt::ConnectionType type,
                 void* result) __asm__("__wrap__"
                                       "ZN11QMetaObject16invokeMethodImplEP7QObjectPN9QtPrivate15QS"
                                       "lotObjectBaseEN2Qt14"
                                       "ConnectionTypeEPv");

bool WaitOn(QThread* thread,
            QDeadlineTimer deadline) __asm__("__real__ZN7QThread4waitE14QDeadlineTimer");
bool WaitOrdered(QThread* thread,
                 QDeadlineTimer deadline) __asm__("__wrap__ZN7QThread4waitE14QDeadlineTimer");

void SendOrdered(QObject* sender, const QMetaObject* metaObject, int signal, void** arguments)
{
    ordered_events::Release();
    SendOn(sender, metaObject, signal, arguments);
}

bool PostOrdered(QObject* receiver, QtPrivate::QSlotObjectBase* slot, Qt::ConnectionType type,
                 void* result)
{
    ordered_events::Release();
    return PostOn(receiver, slot, type, result);
}

bool WaitOrdered(QThread* thread, QDeadlineTimer deadline)
{
    const bool isFinished = WaitOn(thread, deadline);
    ordered_events::Acquire();
    return isFinished;
}

namespace {

char order;

} // namespace

void ordered_events::Release()
{
    __tsan_release(&order);
}

void ordered_events::Acquire()
{
    __tsan_acquire(&order);
}

#else

void ordered_events::Release() {}

void ordered_events::Acquire() {}

#endif
