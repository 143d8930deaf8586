#include "platform/Md5.h"

#include <QCryptographicHash>

namespace velmora::platform {

std::string md5(std::string_view bytes) {
    const QByteArrayView view(bytes.data(), static_cast<qsizetype>(bytes.size()));
    return QCryptographicHash::hash(view.toByteArray(), QCryptographicHash::Md5).toHex().toStdString();
}

}  // namespace velmora::platform
