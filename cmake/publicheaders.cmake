# What is installed for hosts, below src/ and (the host kit) beside it. Each header compiles alone,
# with only the others of this list; a test builds each so from an installed package.
set(public_headers
  # the library
  pathfinder/answers.h
  pathfinder/interface.h
  pathfinder/version.h
  # the host's copy of the foundation: callbacks, texts, exceptions, reports, the log
  common/interface.h
  common/basicstring.h
  common/callback/fileiocallback.h
  common/callback/memorycallback.h
  common/callback/reportcallback.h
  common/container/array.h
  common/debug/logdispatcher.h
  common/debug/logmanager.h
  common/debug/logmessage.h
  common/debug/logreporter.h
  common/debug/trace.h
  common/exceptions/argumentexceptions.h
  common/exceptions/callstack.h
  common/exceptions/exception.h
  common/exceptions/memoryexceptions.h
  common/exceptions/pair.h
  common/exceptions/stateexceptions.h
  common/geom/ray2d.h
  common/geom/ray3d.h
  common/io/fileaccess.h
  common/io/ioexceptions.h
  common/math/vec2.h
  common/math/vec3.h
  common/memory/allocator.h
  common/memory/defaultallocator.h
  common/memory/memorymanaged.h
  common/memory/objectcreation.h
  common/memory/stlallocator.h
  common/parser/parserexception.h
  common/parser/xml/xmlparserexception.h
  common/platform/export.h
  common/platform/mappedfile.h
  common/platform/mutex.h
  common/referencecounted.h
  common/report/indexerror.h
  common/report/report.h
  common/report/reporttext.h
  common/sharedptr.h
  common/simplereferencecount.h
  common/singleton.h
  common/utility/floatchars.h
  common/utility/floattext.h
  # the host's own view of a mesh
  navmesh/interface.h
  navmesh/meshdefects.h
  navmesh/navmeshbuilder.h
  navmesh/navmeshcontainer.h
  navmesh/navmeshfiles.h
  navmesh/navmeshoptimizer.h)
file(GLOB hostkit_headers CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/hostkit/*.h)

# zuno_install_headers(ROOT HEADER...): keeps each header's folder.
function(zuno_install_headers root)
  foreach(header ${ARGN})
    get_filename_component(folder ${header} DIRECTORY)
    install(FILES ${root}/${header} COMPONENT development
      DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/zunopathfinder/${folder})
  endforeach()
endfunction()
zuno_install_headers(${PROJECT_SOURCE_DIR}/src ${public_headers})
zuno_install_headers(${PROJECT_SOURCE_DIR} ${hostkit_headers})
