/* Uses the C interface from C. Prints what string of the resource module tells code 11. */
#include <stdio.h>

#include <mvpingui/mvpingui.h>
#include <vkerrmes/vkerrmes.h>
#include <vklog/vklog.h>

int main(void) {
    InitGUIDll();
    SetPinPromptString("Your PIN");
    SetPinPromptString(NULL);
    FreeGetPinBuffer(NULL, 0);
    puts(GetErrorString(11));
    return GetErrorString(11)[0] != '\0' ? 0 : 1;
}
