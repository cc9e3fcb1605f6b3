module zentra3d

go 1.17
