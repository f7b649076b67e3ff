#pragma once
// Acts on a modal box or dialog once it is shown, from inside its own event loop.

#include <functional>
#include <QApplication>
#include <QTimer>
#include <QWidget>

template <typename T>
void whenShown(std::function<void(T*)> act)
{
    auto* timer = new QTimer;
    timer->setInterval(5);
    QObject::connect(timer, &QTimer::timeout, [timer, act] {
        if (auto* widget = qobject_cast<T*>(QApplication::activeModalWidget())) {
            timer->stop();
            timer->deleteLater();
            act(widget);
        }
    });
    timer->start();
}
