# keyvora.app: the program, its information dictionary, its resources and Sparkle, in the places that macOS looks in.
# Included where the target is made.
# Signing comes after the build (sign-development, sign-release): it must be the last thing that touches the bundle.
set(contents $<TARGET_BUNDLE_CONTENT_DIR:keyvora>)
set_target_properties(keyvora PROPERTIES
  MACOSX_BUNDLE TRUE
  MACOSX_BUNDLE_INFO_PLIST ${CMAKE_CURRENT_BINARY_DIR}/Info.plist
  # Every local dependency is static; only Sparkle is loaded, from within the bundle.
  BUILD_WITH_INSTALL_RPATH TRUE
  INSTALL_RPATH "@executable_path/../Frameworks")

add_custom_command(TARGET keyvora POST_BUILD
  COMMAND ${CMAKE_COMMAND} -E make_directory ${contents}/Resources ${contents}/Frameworks
  COMMAND ${CMAKE_COMMAND} -E copy_directory
    ${CMAKE_CURRENT_BINARY_DIR}/keyvora_keyvora.bundle ${contents}/Resources/keyvora_keyvora.bundle
  COMMAND ${CMAKE_COMMAND} -E copy ${CMAKE_CURRENT_LIST_DIR}/keyvora.icns ${contents}/Resources/keyvora.icns
  # A framework is full of links, which must stay links.
  COMMAND ${CMAKE_COMMAND} -E rm -rf ${contents}/Frameworks/Sparkle.framework
  COMMAND cp -R -P ${KEYVORA_SPARKLE_DIR}/Sparkle.framework ${contents}/Frameworks/Sparkle.framework
  COMMENT "Assembling keyvora.app"
  VERBATIM)
