// A process with Qt Core that does nothing: the cost of a start.

#include <QCoreApplication>

int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  return 0;
}
