add_library(tolvar_platform_core STATIC
  ${CMAKE_CURRENT_LIST_DIR}/PropertyList.cpp
  ${CMAKE_CURRENT_LIST_DIR}/PlistFile.cpp
  ${CMAKE_CURRENT_LIST_DIR}/DataFolder.cpp
)
target_include_directories(tolvar_platform_core PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
# The property-list library: through pkg-config when its development files are installed, else
# its runtime library directly (PlistCalls.h declares the calls made).
if(TARGET PkgConfig::PLIST)
  target_link_libraries(tolvar_platform_core PRIVATE PkgConfig::PLIST)
else()
  find_library(TOLVAR_PLIST_LIBRARY NAMES plist-2.0 libplist-2.0.so.3 libplist.so.3)
  if(NOT TOLVAR_PLIST_LIBRARY)
    message(FATAL_ERROR "The property-list library (libplist 2.2) was not found")
  endif()
  target_link_libraries(tolvar_platform_core PRIVATE ${TOLVAR_PLIST_LIBRARY})
endif()
