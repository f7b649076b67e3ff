#pragma once
// An image list of a form: pictures by 1-based index or by key, which the form's
// toolbar and tree take their images from. An index or key the list does not hold is
// run-time error 35600 or 35601, as the image list control raises them.

#include <QIcon>
#include <QList>
#include <QString>

namespace ui {

class ImageList {
public:
    void Add(const QIcon& image, const QString& key = QString());
    int Count() const { return static_cast<int>(images_.size()); }
    QIcon ListImages(int index) const;
    QIcon ListImages(const QString& key) const;

private:
    struct Image {
        QIcon icon;
        QString key;
    };
    QList<Image> images_;
};

}  // namespace ui
