# Run by CPack between installing and packing: moves what Debian has another place for.
# Its zsh reads the completions of packages here, and site-functions of /usr/local only.
set(zsh ${CPACK_TEMPORARY_INSTALL_DIRECTORY}${CPACK_PACKAGING_INSTALL_PREFIX}/share/zsh)
file(RENAME ${zsh}/site-functions ${zsh}/vendor-completions)
