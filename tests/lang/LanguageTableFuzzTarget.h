#pragma once
// Loads untrusted bytes as a language table, the way the program would, and checks
// that the loader ends in one of its allowed ways: loaded, one message box, or a
// run-time error. Anything else (a crash, another exception, more than one box) aborts.

#include <QByteArrayView>

void loadUntrustedLanguageTable(QByteArrayView bytes);
