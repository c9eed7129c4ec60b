# What the tests do without on Windows, each for a reason.

quillon_leave_out("no device: there is no OpenCL for this system, and no driver of NVIDIA's"
  FOLDERS devices kernels
  PROGRAMS ironlane_test kestrel_gpu_test
  TESTS EveryDevice.GivesTheBitsOfTheProcessor)
quillon_leave_out("a file that is being replaced may be nothing for an instant"
  TESTS BinaryCache.LetsSeveralStoreAtOnce)
quillon_leave_out("no OpenCL for this system" PROGRAMS opencl_curves_test)
quillon_leave_out("compiles with the CUDA compiler of this machine" PROGRAMS cuda_curves_test)
quillon_leave_out("compiles with the compiler of this machine" PROGRAMS curve_refusal_test)
quillon_leave_out("no MPFR for this system" PROGRAMS mpfr_test)
quillon_leave_out("no zimg and OpenColorIO for this system" PROGRAMS chromant_witness_test)
quillon_leave_out("the linker exports all of this library here"
  TESTS Exports.OfTheMapperAreItsInterface)
quillon_leave_out("no zimg for this system"
  TESTS
    CopyFrame.IsRightOnMemorySharedWithAYCbCrFrame
    CopyFrame.MakesNoPictureBetweenYCbCrAndInterleavedFrames
    CopyFrame.MakesNoPictureBetweenYCbCrFrames
  SOURCES
    mapper/MapRowsTest.cpp
    refhost/kestrel/YCbCrCopyTest.cpp
    refhost/kestrel/YCbCrPatchTest.cpp
    refhost/kestrel/YCbCrWitnessTest.cpp)
quillon_leave_out("counts page faults, which this system does not"
  SOURCES refhost/orvcore/PageFaultTest.cpp)
quillon_leave_out("bounds the memory of a process, which Wine does not"
  SOURCES refhost/kestrel/NoMemoryTest.cpp)
quillon_leave_out("counts every allocation; the C library has no aligned_alloc"
  PROGRAMS no_allocation_test row_walk_allocation_test)
quillon_leave_out("no Google Benchmark for this system" FOLDERS bench)
quillon_leave_out("no command line on this system" FOLDERS campaign tools)
quillon_leave_out("runs programs by the shell" FOLDERS probe report)
