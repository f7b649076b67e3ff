#pragma once
// The host suite's function library as the table engine holds it: initialised once when
// the engine is created, released once when it goes, and a source of progress events
// while a long operation runs. The statistics operations join it with the calculation
// engine; whatever raises progress calls reportProgress, and every listener of
// ProgressChange hears the value unchanged.

#include <QObject>

namespace host {

class FunctionLibrary : public QObject {
    Q_OBJECT
public:
    explicit FunctionLibrary(QObject* parent = nullptr);

    void Initialize();
    void Release();
    bool isInitialized() const { return initialized_; }

    void reportProgress(double value) { emit ProgressChange(value); }

signals:
    void ProgressChange(double value);

private:
    bool initialized_ = false;
};

}  // namespace host
