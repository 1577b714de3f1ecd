# Each width's `sorvane` lies beside the module that it loads, in lib/<triplet>/sorvane; bin/sorvane leads to one of
# them. Both do the same on boards, but only the 64-bit one looks into programs of both widths, so where both are
# installed into one prefix it is that one, in whatever order they come.
set(folder ${CMAKE_INSTALL_LIBDIR}/sorvane)
install(TARGETS sorvane RUNTIME DESTINATION ${folder})
install(TARGETS sorvane_library LIBRARY DESTINATION ${folder})
set(link_unless "")
if(CMAKE_SIZEOF_VOID_P EQUAL 4)
    set(link_unless "lib/x86_64-linux-gnu/sorvane/sorvane")
endif()
install(CODE "
    set(prefix \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}\")
    if(\"${link_unless}\" STREQUAL \"\" OR NOT EXISTS \"\${prefix}/${link_unless}\")
        file(MAKE_DIRECTORY \"\${prefix}/${CMAKE_INSTALL_BINDIR}\")
        file(RELATIVE_PATH there \"\${prefix}/${CMAKE_INSTALL_BINDIR}\" \"\${prefix}/${folder}/sorvane\")
        file(CREATE_LINK \"\${there}\" \"\${prefix}/${CMAKE_INSTALL_BINDIR}/sorvane\" SYMBOLIC)
    endif()")
