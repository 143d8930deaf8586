#pragma once

#include <filesystem>

#include <QAbstractButton>
#include <QImage>
#include <QPixmap>

namespace velmora {

/// A button that is a picture, in its own shape; `clicked` comes when a touch that began on it ends on it.
class ImageButton : public QAbstractButton {
public:
    explicit ImageButton(const QRect& frame, QWidget* parent = nullptr);

    /// Without a picture in the file it shows none, and can be touched all the same.
    void setImage(const std::filesystem::path& file);
    [[nodiscard]] const std::filesystem::path& imageFile() const { return file_; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] QPixmap fitted() const;

    std::filesystem::path file_;
    QImage image_;
    QPixmap fitted_;  ///< to the size in the pixels of the screen
};

}  // namespace velmora
