# What differs between distributions: the format of packages, the name of the release in a package's version, and
# the folder of zsh's completions. Unknown distributions get a plain archive.

cmake_host_system_information(RESULT SPACEMINT_RELEASE QUERY DISTRIB_INFO)
set(family "${SPACEMINT_RELEASE_ID};${SPACEMINT_RELEASE_ID_LIKE}")
string(REPLACE " " ";" family "${family}")
set(kind other)
if("debian" IN_LIST family)
  set(kind debian)
elseif("fedora" IN_LIST family OR "suse" IN_LIST family)
  set(kind rpm)
endif()
set(SPACEMINT_DISTRIBUTION ${kind} CACHE STRING "The kind of package that is made: debian, rpm or other")
set(SPACEMINT_ZSH_FOLDER site-functions)
if(SPACEMINT_DISTRIBUTION STREQUAL "debian")
  set(SPACEMINT_ZSH_FOLDER vendor-completions)
endif()

# A package belongs to the release that it was built on, because it needs that release's ICU. "~deb12" sorts
# before "~deb13", so an upgrade of the system upgrades the package.
set(SPACEMINT_RELEASE_NAME "${SPACEMINT_RELEASE_ID}${SPACEMINT_RELEASE_VERSION_ID}")
string(REGEX REPLACE "^debian" "deb" SPACEMINT_RELEASE_NAME "${SPACEMINT_RELEASE_NAME}")
