// What starting a process with Qt Core costs.

#include <QCoreApplication>

int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  return 0;
}
