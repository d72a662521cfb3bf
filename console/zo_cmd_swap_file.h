// The swap file behind the shared page, as the console opens it.
#ifndef ZO_CONSOLE_ZO_CMD_SWAP_FILE_H
#define ZO_CONSOLE_ZO_CMD_SWAP_FILE_H

// Opens g_strSwapFile (creating it when missing), maps its first page shared
// and claims it for this console until the process ends; returns the page.
// Ends the process with exit(1), after one line naming the swap file, when the
// file is a FIFO or a device (never opened), cannot be opened, is shorter than
// the page (removed again when this call created it), cannot be mapped, or
// another console holds the claim (its process id named when known).
void* MapSwapFile();

#endif  // ZO_CONSOLE_ZO_CMD_SWAP_FILE_H
