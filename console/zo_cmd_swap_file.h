// The swap file behind the shared page, as the console opens it.
#ifndef ZO_CONSOLE_ZO_CMD_SWAP_FILE_H
#define ZO_CONSOLE_ZO_CMD_SWAP_FILE_H

// Opens g_strSwapFile (creating it when missing) and maps its first page
// shared; returns the page. Says once on standard error when another console
// uses the file, naming its process id. No descriptor of the file ever takes
// 0, 1 or 2. Ends the process with exit(1), after one line naming the swap
// file, when the file is a FIFO or a device (never opened), cannot be opened,
// is shorter than the page (removed again when this call created it), or
// cannot be mapped.
void* MapSwapFile();

#endif  // ZO_CONSOLE_ZO_CMD_SWAP_FILE_H
