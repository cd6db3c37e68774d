# Replaces the OpenCVConfig.cmake of Debian's libopencv-dev for the arm64 modules core and imgproc. OpenCV's development
# packages can be installed for two architectures at once, except libopencv-dev.
find_path(OpenCV_INCLUDE_DIR opencv2/core.hpp PATH_SUFFIXES opencv4)
set(OpenCV_FOUND TRUE)
foreach(module core imgproc)
  find_library(OpenCV_${module}_LIBRARY opencv_${module})
  if(OpenCV_INCLUDE_DIR AND OpenCV_${module}_LIBRARY)
    if(NOT TARGET opencv_${module})
      add_library(opencv_${module} SHARED IMPORTED)
      set_target_properties(opencv_${module} PROPERTIES
        IMPORTED_LOCATION ${OpenCV_${module}_LIBRARY}
        INTERFACE_INCLUDE_DIRECTORIES ${OpenCV_INCLUDE_DIR})
    endif()
  elseif(OpenCV_FIND_REQUIRED_${module})
    set(OpenCV_FOUND FALSE)
    set(OpenCV_NOT_FOUND_MESSAGE "opencv_${module} is missing: install libopencv-${module}-dev:arm64")
  endif()
endforeach()
