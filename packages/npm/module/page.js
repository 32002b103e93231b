// Names what src/module.ts brings along, so that the linker looks for nothing else.
mergeInto(LibraryManager.library, {
    zuno_page_log: () => {},
});
