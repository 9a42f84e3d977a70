#include "desktop/drawing/picture.h"

#include <QFile>
#include <QSvgRenderer>
#include <cmath>
#include <limits>

#include <gmock/gmock.h>

#include "desktop/drawing/drawn_platform.h"
#include "desktop/drawing/offscreen.h"
#include "temporary_folder.h"
#include "ui/image_view.h"
#include "ui/label.h"

namespace linewatch::desktop {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

constexpr PictureStyle kStyle{.size = {200, 60}, .scale = 2};

QByteArray contentOf(const std::filesystem::path& file) {
  QFile opened(QString::fromStdString(file.string()));
  return opened.open(QIODevice::ReadOnly) ? opened.readAll() : QByteArray();
}

/// The mean difference of two pictures' channels, from 0 to 255.
double difference(const QImage& a, const QImage& b) {
  double sum = 0;
  for (int y = 0; y < a.height(); ++y) {
    for (int x = 0; x < a.width(); ++x) {
      const QColor one = a.pixelColor(x, y), other = b.pixelColor(x, y);
      sum += std::abs(one.red() - other.red()) + std::abs(one.green() - other.green()) +
             std::abs(one.blue() - other.blue());
    }
  }
  return sum / (3.0 * a.width() * a.height());
}

/// Fills itself with red.
class RedView final : public ui::View {
 public:
  using View::View;
  void draw(ui::Canvas& canvas) override { canvas.fillRect(bounds(), ui::RGBA{1, 0, 0}); }
};

class Picture : public testing::Test {
 protected:
  static void SetUpTestSuite() { needOffscreenApplication(); }

  Picture() {
    installPlatform(std::make_shared<DrawnPlatform>());
    view_ = std::make_shared<ui::View>();
    add<ui::Label>({10, 5, 120, 50})->setText("Two lines of text in a label");
    std::static_pointer_cast<ui::Label>(view_->subviews().back())->setNumberOfLines(0);
    add<ui::ImageView>({150, 5, 32, 32})->setImage(platform().imageSource().imageNamed("good-v2"));
    const auto clipping = add<ui::View>({150, 44, 10, 10});
    clipping->setClipsToBounds(true);
    clipping->addSubview(std::make_shared<RedView>(ui::Rect{5, 5, 30, 30}));
  }
  ~Picture() override { installPlatform(nullptr); }

  template <class V>
  std::shared_ptr<V> add(const ui::Rect& frame) {
    auto view = std::make_shared<V>();
    view->setFrame(frame);
    view_->addSubview(view);
    return view;
  }

  std::filesystem::path file(std::string_view name) const { return folder_.path() / name; }

  std::shared_ptr<ui::View> view_;
  TemporaryFolder folder_;
};

TEST_F(Picture, ShowsTheViewOnTheBackgroundOfItsAppearance) {
  const std::optional<QImage> light = imageOf(*view_, kStyle);
  ASSERT_TRUE(light);
  EXPECT_EQ(light->size(), QSize(400, 120));
  EXPECT_EQ(light->pixelColor(0, 0), qtColor(ui::SemanticColor::background, ui::Appearance::light));
  EXPECT_EQ(light->pixelColor(315, 105), QColor(255, 0, 0));
  EXPECT_EQ(light->pixelColor(322, 105), light->pixelColor(0, 0));
  PictureStyle style = kStyle;
  style.appearance = ui::Appearance::dark;
  EXPECT_EQ(imageOf(*view_, style)->pixelColor(0, 0),
            qtColor(ui::SemanticColor::background, style.appearance));
}

TEST_F(Picture, LooksTheSameInEveryFormat) {
  const QImage pixels = *imageOf(*view_, kStyle);
  for (const std::string_view name : {"a.png", "a.svg", "a.pdf"}) {
    EXPECT_EQ(savePicture(*view_, kStyle, file(name)), std::nullopt) << name;
  }
  EXPECT_EQ(QImage(QString::fromStdString(file("a.png").string())).convertToFormat(pixels.format()), pixels);

  const QByteArray svg = contentOf(file("a.svg"));
  EXPECT_THAT(svg.toStdString(), Not(HasSubstr("<text")));
  EXPECT_THAT(svg.toStdString(), Not(HasSubstr("<image")));
  QSvgRenderer renderer(svg);
  ASSERT_TRUE(renderer.isValid());
  EXPECT_EQ(renderer.viewBox(), QRect(0, 0, 200, 60));
  QImage drawn(pixels.size(), pixels.format());
  drawn.fill(Qt::white);
  QPainter painter(&drawn);
  renderer.render(&painter);
  painter.end();
  EXPECT_LT(difference(drawn, pixels), 2.5);

  const QByteArray pdf = contentOf(file("a.pdf"));
  EXPECT_TRUE(pdf.startsWith("%PDF"));
  EXPECT_TRUE(pdf.contains("/MediaBox [0 0 200.000000 60.000000]") || pdf.contains("/MediaBox [0 0 200 60]"));
  EXPECT_TRUE(pdf.contains("/FontFile"));
  EXPECT_FALSE(pdf.contains("/Subtype /Image"));
}

TEST_F(Picture, HasEmojiInEveryFormat) {
  const QImage without = *imageOf(*view_, kStyle);
  add<ui::Label>({170, 38, 30, 22})->setText("🚧");
  const QImage pixels = *imageOf(*view_, kStyle);
  ASSERT_NE(pixels, without);
  ASSERT_EQ(savePicture(*view_, kStyle, file("a.svg")), std::nullopt);
  ASSERT_EQ(savePicture(*view_, kStyle, file("a.pdf")), std::nullopt);
  QImage drawn(pixels.size(), pixels.format());
  QPainter painter(&drawn);
  QSvgRenderer(contentOf(file("a.svg"))).render(&painter);
  painter.end();
  const QRect place(340, 76, 60, 44);
  EXPECT_LT(difference(drawn.copy(place), pixels.copy(place)),
            0.5 * difference(without.copy(place), pixels.copy(place)));
  EXPECT_TRUE(contentOf(file("a.pdf")).contains("/Subtype /Image"));
}

TEST_F(Picture, ATallerPictureIsTooLarge) {
  for (const double scale : {0.5, 1.0, 2.0, 8.0}) {
    for (const double width : {100.0, 359.0, 2000.0}) {
      const double height = tallestPicture(width, scale);
      EXPECT_TRUE(imageOf(*view_, {.size = {width, height}, .scale = scale})) << width << " at " << scale;
      EXPECT_FALSE(imageOf(*view_, {.size = {width, height + 1}, .scale = scale}))
          << width << " at " << scale;
    }
  }
}

TEST_F(Picture, RefusesAnImpossibleSize) {
  constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();
  for (const ui::Size size : {ui::Size{0, 60}, ui::Size{200, -1}, ui::Size{kNotANumber, 60},
                              ui::Size{1e9, 60}, ui::Size{16000, 16000}}) {
    EXPECT_EQ(imageOf(*view_, {.size = size, .scale = 1}), std::nullopt);
    const auto error = savePicture(*view_, {.size = size, .scale = 1}, file("b.png"));
    ASSERT_TRUE(error);
    EXPECT_THAT(error->description(), HasSubstr("the size is not possible for a picture"));
  }
  EXPECT_FALSE(std::filesystem::exists(file("b.png")));
}

TEST_F(Picture, ReportsWhyWritingFailed) {
  EXPECT_THAT(savePicture(*view_, kStyle, file("a.gif"))->description(),
              HasSubstr("must end in .png, .svg or .pdf"));
  EXPECT_THAT(savePicture(*view_, kStyle, file("none/a.png"))->description(), HasSubstr("none/a.png"));
}

}  // namespace
}  // namespace linewatch::desktop
