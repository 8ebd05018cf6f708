#pragma once

#include <QByteArray>
#include <functional>

/// What @p work prints on standard output. A failing check belongs outside: its message would be caught too.
QByteArray standardOutputOf(const std::function<void()>& work);
