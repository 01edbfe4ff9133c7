[playlist]
File1=one.mp3
Title1=One
Length1=61
NumberOfEntries=1
Version=2
