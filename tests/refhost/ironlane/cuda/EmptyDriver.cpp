/// A library that has nothing of NVIDIA's driver.
extern "C" int NothingOfTheDriver() { return 0; }
