# sorvane-sim is the same 64-bit program in builds of both widths, so each installs it; the library that it preloads comes
# in the build's own width.
install(PROGRAMS $<TARGET_FILE:sorvane-sim> DESTINATION ${CMAKE_INSTALL_BINDIR})
# Debian's Python looks there under /usr.
install(DIRECTORY ${PROJECT_SOURCE_DIR}/python/sorvane_sim DESTINATION lib/python3/dist-packages
    FILES_MATCHING PATTERN "*.py" PATTERN py.typed PATTERN __pycache__ EXCLUDE)
install(TARGETS sorvane_sim_preload LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})

# sorvane-sim leaves the directory to the loader of each process, by $LIB: lib/<triplet> with Debian's C libraries, lib32
# with the 32-bit one that comes with multilib.
set(loader_dirs lib/${triplet})
if(CMAKE_SIZEOF_VOID_P EQUAL 4)
    list(APPEND loader_dirs lib32)
endif()
list(REMOVE_ITEM loader_dirs ${CMAKE_INSTALL_LIBDIR})
set(library ${CMAKE_SHARED_LIBRARY_PREFIX}sorvane_sim_preload${CMAKE_SHARED_LIBRARY_SUFFIX})
foreach(dir ${loader_dirs})
    set(link ${CMAKE_CURRENT_BINARY_DIR}/installed/${dir}/${library})
    file(RELATIVE_PATH there ${CMAKE_INSTALL_PREFIX}/${dir} ${CMAKE_INSTALL_FULL_LIBDIR}/${library})
    file(MAKE_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}/installed/${dir})
    file(CREATE_LINK ${there} ${link} SYMBOLIC)
    install(FILES ${link} DESTINATION ${dir})
endforeach()
