# cmake --install BUILD --prefix P: header, both libraries, pkg-config file, CMake package and docs; and what the virtual
# boards add (sim/command/install.cmake). Builds of both widths may be installed into one prefix: what they share is the
# same in both, and what differs goes to the directory of its width, lib/i386-linux-gnu or lib/x86_64-linux-gnu.
if(CMAKE_SIZEOF_VOID_P EQUAL 4)
    set(triplet i386-linux-gnu)
else()
    set(triplet ${CMAKE_SYSTEM_PROCESSOR}-linux-gnu)
endif()
set(CMAKE_INSTALL_LIBDIR lib/${triplet} CACHE STRING "Where libraries go")
include(GNUInstallDirs)

install(FILES api/sorvaneusb.h api/sorvaneusb_types.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(TARGETS sorvaneusb sorvaneusb_static EXPORT SorvaneUSB
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
    INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX
    BASE_DIRECTORY ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig OUTPUT_VARIABLE prefix_from_pc)
configure_file(cmake/sorvaneusb.pc.in sorvaneusb.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/sorvaneusb.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

include(CMakePackageConfigHelpers)
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/SorvaneUSB)
install(EXPORT SorvaneUSB NAMESPACE SorvaneUSB:: FILE SorvaneUSBConfig.cmake DESTINATION ${package_dir})
write_basic_package_version_file(SorvaneUSBConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/SorvaneUSBConfigVersion.cmake DESTINATION ${package_dir})

# As they lie in the tree, so that they find each other.
install(FILES README.md CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DOCDIR} FILES_MATCHING PATTERN "*.md"
    PATTERN "*.schema.json")
