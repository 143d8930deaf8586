#include "Screenshots.h"

namespace demo {

Screenshots::Screenshots(const QDir& folder) : folder_(folder) {}

QString Screenshots::add(const QImage& picture, const QString& name) {
    if (picture.isNull()) return {};
    const auto file = QString("%1-%2.png").arg(++count_, 2, 10, QChar('0')).arg(name);
    return picture.save(folder_.filePath(file)) ? file : QString();
}

}  // namespace demo
