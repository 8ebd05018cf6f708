from HvMirefoldCoreUI import FileInfo

first = FileInfo("shot.0001.exr", False)
second = FileInfo("shot.0002.exr", False)
shot = FileInfo("shot.#.exr", True)
shot.setStartFrame(1)
shot.setEndFrame(2)
shot.insertSequenceFile(1, first)  # not owned: keep the members alive
shot.insertSequenceFile(2, second)
shot.setSequenceName("shot.####.exr 1-2")
print(first.fileName(), "and", second.fileName(), "are", shot.fileName())
