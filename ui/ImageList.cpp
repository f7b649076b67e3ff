#include "ui/ImageList.h"

#include "rt/VbError.h"

namespace ui {

void ImageList::Add(const QIcon& image, const QString& key)
{
    images_.append({image, key});
}

QIcon ImageList::ListImages(int index) const
{
    if (index < 1 || index > Count())
        throw rt::vbError(35600, QStringLiteral("Index out of bounds"));
    return images_[index - 1].icon;
}

QIcon ImageList::ListImages(const QString& key) const
{
    for (const Image& image : images_)
        if (!key.isEmpty() && image.key == key)
            return image.icon;
    throw rt::vbError(35601, QStringLiteral("Element not found"));
}

}  // namespace ui
