#include "main/LinuxProgram.h"

int main(int argc, char** argv) {
  return vorli::runLinuxProgram(argc, argv, vorli::SamplingBackEnds::ofThisMachine());
}
