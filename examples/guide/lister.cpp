#include <catalogue/FileInfoList.h>
#include <iostream>

int main()
{
    Halvern::UI::FileInfoList list;
    list.setSequencesEnabled(true);
    if (list.fill(".") < 0)
        return 1;
    for (const Halvern::UI::FileInfo& entry : list.entries())
        std::cout << entry.fileName() << std::endl;
}
