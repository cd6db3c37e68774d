# Debian's development packages of OpenCV for two architectures lie side by side, all but the one with the file that
# find_package looks for. This file takes that one's place for the modules that can be had so.
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
