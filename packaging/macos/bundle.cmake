# keyvora.app: the program, its information dictionary, its resources and Sparkle, in the places required by macOS.
# Included where the target is defined. Signing (sign-development, sign-release) follows the build and must be the last
# change of the bundle.
set(document ${PROJECT_SOURCE_DIR}/resources/mappings.json)
set(icon ${CMAKE_CURRENT_LIST_DIR}/keyvora.icns)
target_sources(keyvora PRIVATE ${document} ${icon})
set_source_files_properties(${document} PROPERTIES MACOSX_PACKAGE_LOCATION Resources/keyvora_keyvora.bundle)
set_source_files_properties(${icon} PROPERTIES MACOSX_PACKAGE_LOCATION Resources)
set_target_properties(keyvora PROPERTIES
  MACOSX_BUNDLE TRUE
  MACOSX_BUNDLE_INFO_PLIST ${CMAKE_CURRENT_BINARY_DIR}/Info.plist
  # All dependencies from sources are static; only Sparkle is loaded, from the bundle.
  BUILD_WITH_INSTALL_RPATH TRUE
  INSTALL_RPATH "@executable_path/../Frameworks")

set(frameworks $<TARGET_BUNDLE_CONTENT_DIR:keyvora>/Frameworks)
add_custom_command(TARGET keyvora POST_BUILD
  # A framework contains symbolic links, which must be kept, and files of an earlier version must be removed.
  COMMAND ${CMAKE_COMMAND} -E rm -rf ${frameworks}/Sparkle.framework
  COMMAND ${CMAKE_COMMAND} -E make_directory ${frameworks}
  COMMAND cp -R -P ${KEYVORA_SPARKLE_DIR}/Sparkle.framework ${frameworks}/Sparkle.framework
  COMMENT "Embedding Sparkle"
  VERBATIM)
