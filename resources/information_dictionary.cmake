# The information dictionary of both hosts. With a key, Sparkle accepts an archive signed with it, or an application
# signed like the installed one; without a key only the latter, from an https feed.
set(KEYVORA_UPDATE_FEED "" CACHE STRING "Address of the appcast; empty: a build that asks nobody for updates")
set(KEYVORA_UPDATE_KEY "" CACHE STRING "Public EdDSA key that updates are signed with, in base64")
if(KEYVORA_UPDATE_FEED)
  set(update_feed ${KEYVORA_UPDATE_FEED})
  set(update_checks true)
else()
  set(update_feed https://updates.invalid/appcast.xml)  # a reserved name: it never resolves
  set(update_checks false)
endif()
set(update_key_entry "")
if(KEYVORA_UPDATE_KEY)
  string(LENGTH "${KEYVORA_UPDATE_KEY}" update_key_length)
  if(NOT update_key_length EQUAL 44 OR NOT KEYVORA_UPDATE_KEY MATCHES "^[A-Za-z0-9+/]+=$")
    message(FATAL_ERROR "KEYVORA_UPDATE_KEY must be 32 bytes in base64, as generate_keys prints them")
  endif()
  set(update_key_entry "\n\t<key>SUPublicEDKey</key>\n\t<string>${KEYVORA_UPDATE_KEY}</string>")
endif()

# keyvora_write_information_dictionary(FILE): Info.plist with this build's version and updates.
function(keyvora_write_information_dictionary file)
  configure_file(${CMAKE_CURRENT_FUNCTION_LIST_DIR}/Info.plist.in ${file} @ONLY)
endfunction()

# As a script, to inspect the result for a build: cmake -DOUTPUT=FILE -DPROJECT_VERSION=... -DKEYVORA_BUILD=... -P
if(CMAKE_SCRIPT_MODE_FILE STREQUAL CMAKE_CURRENT_LIST_FILE)
  keyvora_write_information_dictionary(${OUTPUT})
endif()
