step
do i f=1 l=3 s=0.5
wrong
end_do
printi i
do i f=1 l=3 s=0.5
printi i
if i .lt. 5
break_loop
endif
end_do
setr x v=0
do j f=1 l=2
do x f=1 l=2 s=1e-20
wrong
while j
do k f=1 l=2
end_do
end_while
end_do
printi j
end_do
seti n v=0
do i f=1 l=2 s=~n
printi i
seti n v=1
end_do
do i f=2 l=1 s=0
wrong
end_do
do i f=1 l=3 s=-0.5
wrong
end_do
q
