// text_picture FILE WIDTH HEIGHT LINES: draws so many lines of text into a picture of WIDTH by HEIGHT pixels
// and saves it. The whole-process benchmark runs it beside `linewatch render`.

#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <cstdlib>

int main(int argc, char** argv) {
  const QGuiApplication application(argc, argv);
  if (argc != 5) return EXIT_FAILURE;
  const int width = std::atoi(argv[2]), height = std::atoi(argv[3]), lines = std::atoi(argv[4]);
  QImage image(width, height, QImage::Format_RGB32);
  image.fill(Qt::white);
  QPainter painter(&image);
  QFont font(QStringLiteral("Inter"));
  font.setPixelSize(30);
  painter.setFont(font);
  for (int line = 0; line < lines; ++line) {
    painter.drawText(32, (line + 1) * height / (lines + 1),
                     QStringLiteral("Trains towards the harbour wait up"));
  }
  painter.end();
  return image.save(QString::fromLocal8Bit(argv[1])) ? EXIT_SUCCESS : EXIT_FAILURE;
}
