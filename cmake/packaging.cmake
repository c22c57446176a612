# Installing, and the Debian packages: the plug-in; the programs, their manuals and the shell completion; the headers
# for whoever writes a host.
set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME tools)
include(CMakePackageConfigHelpers)

# Headers, as <agent/agent_log.h>, for CMake and pkg-config.
set(header_dir ${CMAKE_INSTALL_INCLUDEDIR}/zorv)
target_include_directories(agent INTERFACE $<INSTALL_INTERFACE:${header_dir}>)
install(DIRECTORY agent DESTINATION ${header_dir} COMPONENT headers FILES_MATCHING PATTERN *.h)
install(TARGETS agent EXPORT ZorvAgent COMPONENT headers)
set(config_dir ${CMAKE_INSTALL_DATADIR}/cmake/ZorvAgent)
install(EXPORT ZorvAgent NAMESPACE zorv:: FILE ZorvAgentConfig.cmake DESTINATION ${config_dir} COMPONENT headers)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/ZorvAgentConfigVersion.cmake COMPATIBILITY SameMajorVersion ARCH_INDEPENDENT)
configure_file(cmake/zorv-agent.pc.in ${PROJECT_BINARY_DIR}/zorv-agent.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/ZorvAgentConfigVersion.cmake DESTINATION ${config_dir} COMPONENT headers)
install(FILES ${PROJECT_BINARY_DIR}/zorv-agent.pc DESTINATION ${CMAKE_INSTALL_DATADIR}/pkgconfig COMPONENT headers)

# For editors of the route configuration: where the programs look for it, beside themselves.
set(schema docs/route.schema.json)
install(FILES ${schema} DESTINATION ${CMAKE_INSTALL_DATADIR}/zorv)
configure_file(${schema} ${PROJECT_BINARY_DIR}/share/zorv/route.schema.json COPYONLY)

# Disabled until somebody enables it.
install(FILES cmake/package/zorv-explain-watch.service DESTINATION lib/systemd/system COMPONENT tools)

set(CPACK_PACKAGE_CONTACT "The developers of libsmartdiagnose <developers@libsmartdiagnose.invalid>" CACHE STRING
  "Who answers for the packages, with an address")

# What every package says of itself.
function(install_texts component package)
  set(doc_dir ${CMAKE_INSTALL_DATADIR}/doc/${package})
  install(FILES README.md cmake/package/copyright ${manuals}/changelog.gz DESTINATION ${doc_dir} COMPONENT ${component})
endfunction()

# Manuals are made by running the programs.
find_program(HELP2MAN help2man)
find_program(LOWDOWN lowdown)
if(HELP2MAN AND LOWDOWN AND NOT CMAKE_CROSSCOMPILING AND NOT SMARTDIAGNOSE_SANITIZE)
  set(manuals ${PROJECT_BINARY_DIR}/manuals)
  set(sources cmake/manuals.sh CHANGELOG.md cli/completion.bash docs/file-formats.md
    docs/man/zorv-local.h2m docs/man/zorv-explain.h2m docs/man/zorv-check.h2m docs/man/zorv-fleet.h2m docs/man/lumo-sim.h2m)
  list(TRANSFORM sources PREPEND ${PROJECT_SOURCE_DIR}/)
  add_custom_command(OUTPUT ${manuals}/completion
    COMMAND ${PROJECT_SOURCE_DIR}/cmake/manuals.sh ${PROJECT_SOURCE_DIR} ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}
      $<TARGET_FILE:smartdiagnose> ${manuals} ${PROJECT_VERSION} ${CPACK_PACKAGE_CONTACT}
    DEPENDS ${sources} zorv-local zorv-explain zorv-check zorv-fleet lumo-sim smartdiagnose
    COMMENT "Writing the manuals"
    VERBATIM)
  add_custom_target(manuals ALL DEPENDS ${manuals}/completion)
  install(DIRECTORY ${manuals}/ DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 FILES_MATCHING PATTERN *.1.gz)
  install(DIRECTORY ${manuals}/ DESTINATION ${CMAKE_INSTALL_MANDIR}/man5 FILES_MATCHING PATTERN *.5.gz)
  set(completions ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
  install(FILES ${manuals}/completion DESTINATION ${completions} RENAME zorv-local)
  file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/links)
  foreach(program zorv-explain zorv-check zorv-fleet lumo-sim)
    file(CREATE_LINK zorv-local ${PROJECT_BINARY_DIR}/links/${program} SYMBOLIC)
    install(FILES ${PROJECT_BINARY_DIR}/links/${program} DESTINATION ${completions})
  endforeach()
  install_texts(plugin libsmartdiagnose)
  install_texts(tools zorv-tools)
  install_texts(headers libsmartdiagnose-dev)
else()
  message(STATUS "Without manuals: they need help2man and lowdown, and programs that run here.")
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL plugin tools headers)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PLUGIN_PACKAGE_NAME libsmartdiagnose)
set(CPACK_DEBIAN_PLUGIN_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME zorv-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION admin)
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "libsmartdiagnose (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_TOOLS_PACKAGE_RECOMMENDS tzdata) # names of zones
set(CPACK_DEBIAN_TOOLS_PACKAGE_SUGGESTS "parallel, openssh-client")  # zorv-fleet --hosts
set(CPACK_DEBIAN_HEADERS_PACKAGE_NAME libsmartdiagnose-dev)
set(CPACK_DEBIAN_HEADERS_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_HEADERS_PACKAGE_ARCHITECTURE all)
set(CPACK_COMPONENT_PLUGIN_DESCRIPTION "Explains abnormal I/O: plug-in of the fault-diagnosis agent")
set(CPACK_COMPONENT_TOOLS_DESCRIPTION "Explains abnormal I/O: host, evidence and simulator for any machine")
set(CPACK_COMPONENT_HEADERS_DESCRIPTION "Explains abnormal I/O: headers for hosts of the plug-in")
include(CPack)
