# Finds OpenCV's modules in Debian's packages of single modules, for this machine or another architecture. Debian's own
# OpenCVConfig.cmake comes with libopencv-dev, which needs 130 MB more and cannot be installed for two architectures.
# Headers of a module without its development package may lie in build/opencv, where scripts/build unpacks them.
set(OpenCV_FOUND TRUE)
set(suffix "")
foreach(module core imgproc imgcodecs calib3d)
  find_path(OpenCV_${module}_INCLUDE_DIR opencv2/${module}.hpp PATH_SUFFIXES opencv4
    PATHS ${CMAKE_CURRENT_LIST_DIR}/../../build/opencv/usr/include)
  # Without a development package, only the file with the version in its name exists.
  find_library(OpenCV_${module}_LIBRARY NAMES opencv_${module} libopencv_${module}${suffix})
  if(IS_SYMLINK "${OpenCV_core_LIBRARY}" AND NOT suffix)
    file(READ_SYMLINK ${OpenCV_core_LIBRARY} versioned)
    string(REGEX MATCH "\\.so.*" suffix ${versioned})
  endif()
  if(OpenCV_${module}_INCLUDE_DIR AND OpenCV_${module}_LIBRARY)
    if(NOT TARGET opencv_${module})
      add_library(opencv_${module} SHARED IMPORTED)
      set_target_properties(opencv_${module} PROPERTIES
        IMPORTED_LOCATION ${OpenCV_${module}_LIBRARY}
        INTERFACE_INCLUDE_DIRECTORIES "${OpenCV_${module}_INCLUDE_DIR};${OpenCV_core_INCLUDE_DIR}")
    endif()
  elseif(OpenCV_FIND_REQUIRED_${module})
    set(OpenCV_FOUND FALSE)
    set(OpenCV_NOT_FOUND_MESSAGE "opencv_${module} is missing: install libopencv-${module}-dev")
  endif()
endforeach()
