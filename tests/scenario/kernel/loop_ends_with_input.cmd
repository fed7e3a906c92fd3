eoi
do i f=1 l=3
do j f=1 l=3
seti a v=1
end_do
